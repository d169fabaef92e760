// The connection to a plug-in as the conversation needs it.
#pragma once

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace worker {

// The host cannot be talked to any more: it died, hung, closed the connection or broke the protocol.
class HostFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Both directions throw HostFailure with the reason in words.
class Connection {
 public:
  virtual ~Connection() = default;
  virtual void send(const std::string& payload) = 0;
  // The next message, waited for as long as the host may stay silent.
  virtual std::string receive() = 0;
  // The same; nothing when no message begins within `patience`.
  virtual std::optional<std::string> receiveWithin(std::chrono::milliseconds /*patience*/) { return receive(); }
  // What the host itself has printed until now and was not given here before, a line each; of very much, the last.
  virtual std::vector<std::string> takePrinted() { return {}; }
  // The job can be left here without loss: where a stop was asked for, it is now.
  virtual void betweenFrames() {}
};

}  // namespace worker
