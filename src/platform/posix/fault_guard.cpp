#include "platform/fault_guard.h"

#include <cxxabi.h>

#include <atomic>
#include <cerrno>
#include <cfenv>
#include <csetjmp>
#include <optional>
#include <utility>

#include "platform/posix/alternate_stack.h"
#include "platform/posix/fault_handlers.h"
#include "platform/posix/local_date.h"
#include "platform/posix/signal_fault.h"

namespace platform {
namespace {

// The thread's exceptions under way, as the C++ ABI lays them out.
struct ExceptionState {
  void* caught;
  unsigned uncaught;
};

ExceptionState& exceptionState() { return *reinterpret_cast<ExceptionState*>(abi::__cxa_get_globals()); }

struct Guard {
  FaultFilter filter;
  void* state;
  Guard* outer;
  posix::StackGuardRegion stackGuard;
  ExceptionState exceptions{};
  std::fenv_t floats{};
  sigjmp_buf landing{};
  std::uint32_t code = 0;
};

// Read by the handler on whatever thread faults: in the static block of thread-local memory, because the handler must
// not be the one to allocate it.
constinit thread_local Guard* innermost __attribute__((tls_model("initial-exec"))) = nullptr;

constinit std::atomic<FaultWitness> witness{nullptr};

Guard* findTaker(const FaultContext& fault) {
  for (Guard* guard = innermost; guard != nullptr; guard = guard->outer) {
    if (guard->filter(guard->state, fault)) return guard;
  }
  return nullptr;
}

// Asks the thread's guards, or tells the witness where there are none. Does not return when a guard takes the fault.
void judge(const posix::Delivery& delivery) {
  const bool isWatched = innermost != nullptr;
  const FaultContext fault =
      posix::translateFault(delivery.signal, *delivery.info, *static_cast<const ucontext_t*>(delivery.context),
                            isWatched ? innermost->stackGuard : posix::StackGuardRegion{});
  if (Guard* const taker = findTaker(fault)) {
    taker->code = fault.code;
    ::siglongjmp(taker->landing, 1);
  }
  const FaultWitness told = witness;
  if (!isWatched && told != nullptr) told(fault);
}

void onFault(int signal, siginfo_t* info, void* context) {
  const int callersError = errno;
  const posix::Delivery delivery{signal, info, context, __builtin_frame_address(0)};
  if (posix::isMachineFault(*info) && !delivery.isHandedBack()) judge(delivery);
  errno = callersError;
  posix::passToPreviousHandler(delivery);
}

class Entry {
 public:
  explicit Entry(Guard& guard) : guard_(guard) { innermost = &guard_; }
  ~Entry() { innermost = guard_.outer; }
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;

 private:
  Guard& guard_;
};

void showThrow(const Guard& guard) {
  FaultContext thrown;
  thrown.code = fault::kCppThrow;
  thrown.address = reinterpret_cast<std::uintptr_t>(&runGuarded);
  thrown.framePointer = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  guard.filter(guard.state, thrown);
}

void runInside(Guard& guard, void (*work)(void* argument), void* argument) {
  try {
    const Entry entry(guard);
    work(argument);
  } catch (const abi::__forced_unwind&) {
    throw;  // the thread is being cancelled
  } catch (...) {
    showThrow(guard);
    throw;
  }
}

std::uint32_t enter(Guard& guard, void (*work)(void* argument), void* argument) {
  guard.exceptions = exceptionState();
  std::fegetenv(&guard.floats);
  if (sigsetjmp(guard.landing, 1) == 0) {
    runInside(guard, work, argument);
    return 0;
  }
  innermost = guard.outer;
  exceptionState() = guard.exceptions;
  std::fesetenv(&guard.floats);
  return guard.code;
}

}  // namespace

std::uint32_t runGuarded(void (*work)(void* argument), void* argument, FaultFilter filter, void* state) {
  Guard guard{filter, state, innermost, posix::currentStackGuardRegion()};
  posix::noteUtcOffset();
  if (guard.outer != nullptr) {
    posix::renewHandlers(&onFault);
    return enter(guard, work, argument);
  }
  const posix::AlternateStack stack;
  const posix::HandlerLease handlers(&onFault);
  return enter(guard, work, argument);
}

void tellUnguardedFaults(FaultWitness told) { witness = told; }

}  // namespace platform
