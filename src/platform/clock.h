// Time: a wrapping millisecond tick counter, sleeping, and waiting for a socket. Everything in the system that waits
// does so through the current clock, which a test replaces by one it controls.
#pragma once

#include <cstdint>

#include "platform/socket.h"

namespace platform {

class Clock {
 public:
  virtual ~Clock() = default;

  // Milliseconds since an arbitrary moment, monotonic; wraps from 4294967295 to 0.
  virtual std::uint32_t tickCount() = 0;

  // Blocks the calling thread.
  virtual void sleep(std::uint32_t milliseconds) = 0;

  // Blocks until `socket` has data, a closed peer or an error to report (readable), or `milliseconds` have passed
  // (timedOut). An interrupted wait goes on for what remains. After failed, lastSocketError() has the number.
  virtual WaitResult waitReadable(SocketHandle socket, std::uint32_t milliseconds) = 0;
};

// The clock in force: the system's own unless replaced.
Clock& clock();

// Puts `replacement` in force for this object's lifetime. Not for use while another thread waits on the old clock.
class ClockReplacement {
 public:
  explicit ClockReplacement(Clock& replacement);
  ~ClockReplacement();
  ClockReplacement(const ClockReplacement&) = delete;
  ClockReplacement& operator=(const ClockReplacement&) = delete;

 private:
  Clock* previous_;
};

}  // namespace platform
