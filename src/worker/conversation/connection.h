// The connection to a plug-in as the conversation needs it.
#pragma once

#include <stdexcept>
#include <string>

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
  // The job can be left here without loss: where a stop was asked for, it is now.
  virtual void betweenFrames() {}
};

}  // namespace worker
