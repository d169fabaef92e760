// What the daemon adds to a bare TCP round trip: a settings command, which has no reply, then a command that has one,
// with the log on as it always is. The peer writes as many lines of the same length to a file; both run on one
// processor, then, as a worker and a host do, on all that there are.
#include <unistd.h>

#include <string>
#include <thread>
#include <vector>

#include "bench/ping_pong.h"
#include "platform/files.h"
#include "plugin/daemon/run_daemon.h"
#include "plugin/util/log_file.h"

namespace {

constexpr std::size_t kHeaderSize = 4;
// Of one length, as the rounds of the bare peer have it.
const std::string kSettings = "LocalRendering";
const std::string kUnknown = "WhatIsThisWord";
const std::string kReply = "ERROR: Unexpected command \"" + kUnknown + "\" received.";

// What the log says of a command, with a call each.
void addLines(std::vector<std::string>& lines, const std::string& command) {
  for (const std::string& line :
       {"\nGot command: " + command, std::string(), "Command: " + command, command, std::string()})
    lines.push_back(line + "\n");
}

std::string message(const std::string& payload) {
  const std::size_t size = payload.size();
  return std::string{static_cast<char>(size >> 24), static_cast<char>(size >> 16), static_cast<char>(size >> 8),
                     static_cast<char>(size)} +
         payload;
}

// A log file of its own, gone with the object.
class BenchLog {
 public:
  BenchLog() {
    corvantis::log_file.close();
    corvantis::log_file.open(platform::windowsPath(path_));
  }
  ~BenchLog() {
    corvantis::log_file.close();
    ::unlink(path_.c_str());
  }
  BenchLog(const BenchLog&) = delete;
  BenchLog& operator=(const BenchLog&) = delete;

 private:
  std::string path_ = "/tmp/corvantis-bench-" + std::to_string(::getpid()) + ".log";
};

// A daemon run on a thread of its own, and the worker that drives it with bare socket calls.
class DaemonRounds {
 public:
  DaemonRounds()
      : daemon_([this] { corvantis::RunCorvantisDaemon(jobState_, socket_, running_, worker_.port(), u"token"); }) {
    worker_.accept();
    worker_.receive(kHeaderSize + std::string("token").size());
    worker_.send(message("TessarynStartup"));
    worker_.receive(kHeaderSize + ("Corvantis " + corvantis::buildVersionString()).size());
  }
  ~DaemonRounds() {
    worker_.close();
    daemon_.join();
  }
  DaemonRounds(const DaemonRounds&) = delete;
  DaemonRounds& operator=(const DaemonRounds&) = delete;

  void round() {
    worker_.send(settings_);
    worker_.send(unknown_);
    worker_.receive(kHeaderSize + kReply.size());
  }

 private:
  const std::string settings_ = message(kSettings), unknown_ = message(kUnknown);
  corvantis::JobState jobState_;
  BenchLog log_;
  corvantis::win32::simple_socket socket_;
  bool running_ = false;
  bench::CallingEnd worker_;
  std::thread daemon_;
};

void measure(const std::string& where, double goal) {
  DaemonRounds ours;
  std::vector<std::string> lines;
  addLines(lines, kSettings);
  addLines(lines, kUnknown);
  bench::PingPong bare({kHeaderSize + kSettings.size(), kHeaderSize + kReply.size(), 2},
                       bench::SmallMessages::sentAtOnce, lines);
  bench::reportRounds("settings command and reply through the daemon, " + where,
                      bench::compareRounds([&] { ours.round(); }, [&] { bare.round(); }, 40000), goal);
}

}  // namespace

int main() {
  measure("all processors", 1.5);
  bench::keepToOneProcessor();
  measure("one processor", 1.15);
}
