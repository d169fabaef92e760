// A host process started for one job, and the connection that its plug-in opens back to the worker.
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "worker/conversation/connection.h"

namespace worker {

struct HostOptions {
  std::vector<std::string>
      command;  // program and arguments; "{script}" stands for the start-up script, else it is appended
  std::chrono::milliseconds silence{300000};           // how long the host may say nothing before it counts as hung
  std::function<void(const std::string&)> onHostLine;  // a line of the host's own output
};

class HostLink : public Connection {
 public:
  // Listens on a free loopback port, writes the start-up script, starts the host and waits for its plug-in to connect.
  // HostFailure: the program cannot be started, ends before it connects, or does not connect in time.
  HostLink(const HostOptions& options, const std::string& token);
  // Closes the connection and ends the host process if it still runs.
  ~HostLink() override;
  HostLink(const HostLink&) = delete;
  HostLink& operator=(const HostLink&) = delete;

  void send(const std::string& payload) override;
  std::string receive() override;

  // Closes the connection and waits for the host to end by itself; after `patience` it is ended. True when it ended by
  // itself with exit code 0.
  bool finish(std::chrono::milliseconds patience);

  // The host's last lines of output, oldest first.
  const std::deque<std::string>& lastLines() const;

  // Asks for a stop from a signal: the pending or next receive throws HostFailure "Interrupted".
  static constexpr const char* kInterrupted = "Interrupted";

 private:
  class Implementation;
  std::unique_ptr<Implementation> implementation_;
};

// A token that nobody else knows: 32 hexadecimal digits.
std::string randomToken();

}  // namespace worker
