// The process's handlers for fault signals, and those that they stand before.
#pragma once

#include <csignal>

namespace platform::posix {

using SignalHandler = void (*)(int signal, siginfo_t* info, void* context);

// While at least one of these lives, `handler` receives the four fault signals of every thread. The last one to go puts
// back what stood there before, unless somebody else has taken the signal meanwhile. All must name the same handler.
class HandlerLease {
 public:
  explicit HandlerLease(SignalHandler handler);
  ~HandlerLease();
  HandlerLease(const HandlerLease&) = delete;
  HandlerLease& operator=(const HandlerLease&) = delete;

 private:
  SignalHandler handler_;
};

// While a lease lives: takes back the signals that somebody else has taken since. Theirs is then the handler that ours
// passes to.
void renewHandlers(SignalHandler handler);

// One call of our handler. `frame` is the handler's own frame address: it tells a new signal from the same one that an
// earlier handler, which regards ours as the one before it, has handed back. Async-signal-safe.
struct Delivery {
  int signal;
  siginfo_t* info;
  void* context;
  const void* frame;

  bool isHandedBack() const;
};

// What would have happened without our handler; for a signal handed back, without the handlers that have had it
// already. Returns where the signal is to be taken again. Async-signal-safe.
void passToPreviousHandler(const Delivery& delivery);

}  // namespace platform::posix
