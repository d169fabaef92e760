// However the worker ends, its host ends with it.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <boost/process.hpp>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include "platform/environment.h"
#include "platform/process/process_tree.h"
#include "support/build_folders.h"
#include "support/temporary_folder.h"

namespace worker {
namespace {

namespace process = boost::process;

// A worker whose host does what it is ordered. Everything of that host holds a pipe, whose end is the host's.
class WorkerEndsTest : public testing::Test {
 protected:
  WorkerEndsTest() { ::mkfifo(pipe_.c_str(), 0600); }

  process::child start(const std::string& orders) {
    process::environment environment = boost::this_process::environment();
    environment["TMPDIR"] = folder_.path();
    return process::child(process::exe = support::programFolder() + "/tessaryn-worker",
                          process::args = {"render", folder_.write("a.gltf", ""), "--frames", "1-2", "--per-frame",
                                           folder_.write("a.ms", ""), "--host",
                                           support::testProgramFolder() + "/scripted_host '" + orders + "'"},
                          process::std_in<process::null, process::std_out> folder_.path("output"),
                          process::std_err > process::null, environment);
  }
  std::string hold() const { return "hold:" + pipe_ + " "; }

  support::TemporaryFolder folder_;
  std::string pipe_ = folder_.path("alive");
};

TEST_F(WorkerEndsTest, NothingOfTheHostIsLeftInAnyPhase) {
  const struct {
    int signal;
    int exitCode;  // 0: the signal ends it
  } ends[] = {{SIGKILL, 0}, {SIGQUIT, 0}, {SIGPIPE, 0}, {SIGINT, 130}, {SIGHUP, 129}, {SIGTERM, 75}};
  const struct {
    const char* name;
    const char* orders;
    bool decided = false;  // how the job ends: the exit code tells that
  } phases[] = {
      {"start", ""},
      {"load", "come serve:StartJob"},
      {"script", "come serve:Execute"},
      {"frame", "come serve:RenderTask,1 say:STARTED"},
      {"second frame", "come serve:RenderTask,2"},
      {"end of the job", "come serve:EndJob"},
      {"end of the host", "come serve:EndJob say:SUCCESS", true},
  };
  for (const auto& phase : phases)
    for (const auto& end : ends) {
      SCOPED_TRACE(std::string(phase.name) + ", signal " + std::to_string(end.signal));
      process::child worker = start(hold() + phase.orders + " fork detach ready stall");
      std::ifstream pipe(pipe_);
      std::string line;
      std::getline(pipe, line);
      ASSERT_EQ(line, "ready");
      ::kill(worker.id(), end.signal);
      while (std::getline(pipe, line)) {  // ends with the last that holds it
      }
      worker.wait();
      const platform::ProcessEnd ended = platform::processEnd(worker.native_exit_code());
      EXPECT_EQ(ended.signalled, end.exitCode == 0);
      if (phase.decided && !ended.signalled) continue;
      EXPECT_EQ(ended.code, ended.signalled ? end.signal : end.exitCode) << folder_.read("output");
    }
}

// A scheduler stops the worker alone, a terminal the worker's group: the host is in neither.
TEST_F(WorkerEndsTest, AHostIsStoppedAndContinuedWithItsWorker) {
  process::child worker = start(hold() + "come serve:RenderTask,1 ready stall");
  std::ifstream pipe(pipe_);
  std::string line;
  std::getline(pipe, line);
  ASSERT_EQ(line, "ready");
  const auto hostIsStopped = [&] {
    const auto processes = platform::processesBelow(worker.id());
    return processes.size() == 2 && processes[1].state == 'T';
  };
  ::kill(worker.id(), SIGSTOP);
  while (!hostIsStopped()) std::this_thread::yield();
  ::kill(worker.id(), SIGCONT);
  while (hostIsStopped()) std::this_thread::yield();
  ::kill(worker.id(), SIGTERM);
  worker.wait();
  EXPECT_EQ(worker.exit_code(), 75);
}

}  // namespace
}  // namespace worker
