// A host started for one job, and the connection that its plug-in opens back to the worker.
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/process/stop_signals.h"
#include "worker/conversation/connection.h"

namespace worker {

struct HostOptions {
  std::vector<std::string>
      command;         // program and arguments; "{script}" stands for the start-up script, else it is appended
  std::string keeper;  // native path of the keeper program
  std::chrono::milliseconds silence{300000};  // how long the host may say nothing before it counts as hung
  std::chrono::milliseconds look{200};        // how often the clock is looked at while nothing happens
  std::chrono::milliseconds grace{0};         // for the frame under way when the worker is asked to terminate
  std::string records;  // folder whose numbered folders keep the log and output of each host; empty: nothing is kept
  const platform::StopSignals* stop = nullptr;         // borrowed; none: the host is waited for whatever comes
  std::function<void(const std::string&)> onHostLine;  // a line of the host's own output
  std::function<void(const std::string&)> onWarning;
};

class HostLink : public Connection {
 public:
  // Listens on a free loopback port, writes the start-up script, starts the host and waits until its plug-in has
  // connected with the token. HostFailure: the program cannot be started, ends before it connects, or does not connect
  // in time.
  explicit HostLink(const HostOptions& options);
  // Closes the connection, keeps the host's record and ends the host, with all that it has started, if it still runs.
  ~HostLink() override;
  HostLink(const HostLink&) = delete;
  HostLink& operator=(const HostLink&) = delete;

  void send(const std::string& payload) override;
  std::string receive() override;
  std::optional<std::string> receiveWithin(std::chrono::milliseconds patience) override;
  std::vector<std::string> takePrinted() override;
  void betweenFrames() override;

  // Closes the connection and waits for the host to end by itself; after `patience` it is ended. True when it ended by
  // itself with exit code 0.
  bool finish(std::chrono::milliseconds patience);

  // The host's last lines of output, oldest first.
  const std::deque<std::string>& lastLines() const;

  // A stop was asked for: what send, receive and betweenFrames throw as a HostFailure then.
  static constexpr const char* kInterrupted = "Interrupted";

 private:
  class Implementation;
  std::unique_ptr<Implementation> implementation_;
};

// A token that nobody else knows: 32 hexadecimal digits.
std::string randomToken();

}  // namespace worker
