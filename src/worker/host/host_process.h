// A host's process below its keeper, with everything that it starts: its output, its end.
#pragma once

#include <array>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/process/keeper.h"
#include "worker/host/event_loop.h"
#include "worker/host/output_lines.h"

namespace worker {

struct HostCommand {
  std::string keeper;                // native path of the program
  std::vector<std::string> command;  // found as a shell finds it
  std::map<std::string, std::string> environment;
};

class HostProcess {
 public:
  // Starts it and waits for the keeper's word. HostFailure with the reason when it cannot be started.
  HostProcess(EventLoop& loop, const HostCommand& command, const std::function<void(const std::string&)>& onLine);
  // Ends it with everything that it has started.
  ~HostProcess();
  HostProcess(const HostProcess&) = delete;
  HostProcess& operator=(const HostProcess&) = delete;

  // Nothing of it runs any more, or its keeper was lost.
  bool isGone() const { return gone_; }
  // Its own process has ended; what it has started may go on.
  bool hasExited() const { return exit_.has_value(); }
  bool succeeded() const { return exit_ && !exit_->signalled && exit_->code == 0; }
  // How it ended, as in "was ended by signal 9"; empty while it runs.
  std::string end() const;
  // Its last output is in, or will not come within `patience`.
  void awaitOutput(EventLoop::Milliseconds patience);
  // Ends it with everything that it has started, and waits for that as long as the system may reasonably take.
  void kill();

  // The keeper: what runs below it is the host.
  platform::ProcessId keeper() const { return keeper_; }

 private:
  struct Exit {
    int code = 0;
    bool signalled = false;
  };
  struct Output {
    explicit Output(boost::asio::io_context& context, std::function<void(std::string)> onLine)
        : pipe(context), lines(std::move(onLine)) {}
    boost::asio::posix::stream_descriptor pipe;
    OutputLines lines;
    std::array<char, 65536> bytes{};
    bool open = true;
  };

  void start(const HostCommand& command);
  void readLine();
  void hear(const std::string& message);
  void read(Output& output);

  EventLoop& loop_;
  boost::asio::local::stream_protocol::socket line_;
  Output output_, errors_;
  std::string text_;
  platform::ProcessId keeper_ = 0;
  bool started_ = false;
  int startError_ = 0;
  std::optional<Exit> exit_;
  bool gone_ = false;
  bool keeperLost_ = false;
};

}  // namespace worker
