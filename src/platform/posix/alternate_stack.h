// The stack that a thread's fault handler runs on.
#pragma once

#include <csignal>
#include <cstddef>

namespace platform::posix {

// Gives the calling thread an alternate signal stack of its own, large enough for fault filters, and a page below it
// that ends the process when a filter needs more. Without memory, or on an alternate stack already, the thread keeps
// what it has.
class AlternateStack {
 public:
  AlternateStack();
  ~AlternateStack();
  AlternateStack(const AlternateStack&) = delete;
  AlternateStack& operator=(const AlternateStack&) = delete;

 private:
  char* memory_ = nullptr;
  std::size_t size_ = 0;
  stack_t previous_{};
};

}  // namespace platform::posix
