// What a fault signal tells, in the words of Windows.
#pragma once

#include <csignal>
#include <cstdint>

#include <ucontext.h>

#include "platform/fault_guard.h"

namespace platform::posix {

// The addresses below a thread's stack that end it when they are touched; empty when they are not known.
struct StackGuardRegion {
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;
};

// Allocates on the first call of a thread.
StackGuardRegion currentStackGuardRegion();

// Raised by the machine, not sent by a process.
bool isMachineFault(const siginfo_t& info);

// Async-signal-safe.
FaultContext translateFault(int signal, const siginfo_t& info, const ucontext_t& context,
                            const StackGuardRegion& guardRegion);

}  // namespace platform::posix
