// A daemon run against a scripted worker, a fake host and a clock that only moves when a test says so.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "hostsdk/core_interface.h"
#include "plugin/daemon/run_daemon.h"
#include "support/fake_clock.h"
#include "support/fake_host.h"
#include "support/fake_script_runtime.h"
#include "support/log_capture.h"
#include "support/scripted_peer.h"

namespace corvantis {

class DaemonTest : public testing::Test {
 protected:
  // As at load, with a worker waiting.
  DaemonTest() { startAfresh(); }

  void startAfresh() {
    worker = std::make_unique<support::ScriptedPeer>();
    connection = std::make_unique<win32::simple_socket>();
    job = std::make_unique<JobState>();
    log.startAgain();
    host.calls.clear();
  }

  // What a job started on the fake host leaves behind.
  void openJob() {
    job->hostCore = {&host.core, &host.core, &host.core};
    job->jobRunning = true;
    job->renderViewport = &host.core.viewports.front();
  }

  // Runs the conversation that `worker` states.
  bool run() {
    worker->start();
    const bool result = RunCorvantisDaemon(*job, *connection, running, worker->port(), u"token");
    worker->finish();
    EXPECT_FALSE(running);
    return result;
  }

  // The worker shakes hands, sends one line, gets these replies and closes.
  bool runLine(const std::string& line, const std::vector<std::string>& replies) {
    worker->handshake("token").send(line);
    for (const std::string& reply : replies) worker->expect(reply);
    worker->close();
    return run();
  }

  // The same for several lines, each with its one reply.
  void runLines(const std::vector<std::pair<std::string, std::string>>& lines) {
    worker->handshake("token");
    for (const auto& [line, reply] : lines) worker->send(line).expect(reply);
    worker->close();
    EXPECT_TRUE(run());
  }

  // What the one command wrote to the log: what follows its fields and their empty line.
  std::vector<std::string> logOfCommand() const {
    std::vector<std::string> lines = log.lines();
    std::erase(lines, "Returning TRUE");
    const auto lastEmpty = std::find(lines.rbegin(), lines.rend(), "");
    return {lastEmpty.base(), lines.end()};
  }

  support::FakeClock clock;
  platform::ClockReplacement clockReplacement{clock};
  support::FakeScriptRuntime scripts;
  support::FakeHost host{&scripts};
  std::unique_ptr<JobState> job = std::make_unique<JobState>();
  support::LogCapture log;
  std::unique_ptr<win32::simple_socket> connection;
  std::unique_ptr<support::ScriptedPeer> worker;
  bool running = false;
};

}  // namespace corvantis
