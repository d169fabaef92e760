// The process's handlers for fault signals, and the stack that they run on.
#pragma once

#include <csignal>
#include <cstddef>

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

// From inside the handler: what would have happened without it. Returns where the signal is to be taken again.
void passToPreviousHandler(int signal, siginfo_t* info, void* context);

// Gives the calling thread an alternate signal stack of its own, large enough for fault filters. Without memory, or on
// an alternate stack already, the thread keeps what it has.
class AlternateStack {
 public:
  AlternateStack();
  ~AlternateStack();
  AlternateStack(const AlternateStack&) = delete;
  AlternateStack& operator=(const AlternateStack&) = delete;

 private:
  void* memory_ = nullptr;
  std::size_t size_ = 0;
  stack_t previous_{};
};

}  // namespace platform::posix
