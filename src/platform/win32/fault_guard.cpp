#include "platform/fault_guard.h"

#include <windows.h>
// After windows.h, which it needs.
#include <malloc.h>
#include <xmmintrin.h>

#include <cfenv>
#include <cstring>

#include "platform/page_reads.h"
#include "platform/win32/structured_exceptions.h"

#if defined(__GLIBCXX__)
#include <cxxabi.h>
#endif

namespace platform {
namespace {

// The number under which the GNU runtime raises C++ throws; Microsoft's is fault::kCppThrow itself.
constexpr std::uint32_t kGnuThrow = 0x20474343;

bool isThrow(std::uint32_t code) { return code == fault::kCppThrow || code == kGnuThrow; }

#if defined(__GLIBCXX__)
// The thread's exceptions under way, as the C++ ABI lays them out.
class ExceptionsUnderWay {
 public:
  void restore() const { current() = saved_; }

 private:
  struct State {
    void* caught;
    unsigned uncaught;
  };
  static State& current() { return *reinterpret_cast<State*>(abi::__cxa_get_globals()); }
  State saved_ = current();
};
#else
// The handler's own unwinding puts them right.
class ExceptionsUnderWay {
 public:
  void restore() const {}
};
#endif

// The thread's rounding and traps, of both floating-point units.
class FloatControls {
 public:
  FloatControls() { std::fegetenv(&legacy_); }
  void restore() const {
    std::fesetenv(&legacy_);
    _mm_setcsr(simd_);
  }

 private:
  unsigned simd_ = _mm_getcsr();
  std::fenv_t legacy_{};
};

// What a stack that has run out keeps for the filter: for good, as long as the thread lives. Without it the filter
// would have less than a page.
void keepStackForTheFilter() {
  ULONG size = 0;
  constexpr ULONG kForTheFilter = 128 * 1024;
  if (::SetThreadStackGuarantee(&size) == 0 || size >= kForTheFilter) return;  // size is now what was kept so far
  size = kForTheFilter;
  (void)::SetThreadStackGuarantee(&size);
}

struct Guard {
  FaultFilter filter;
  void* state;
  std::uint32_t code = 0;  // of the fault that the filter has taken
};

FaultContext contextOf(const EXCEPTION_POINTERS& exception) {
  const EXCEPTION_RECORD& record = *exception.ExceptionRecord;
  FaultContext fault;
  fault.code = isThrow(record.ExceptionCode) ? fault::kCppThrow : record.ExceptionCode;
  fault.address = reinterpret_cast<std::uintptr_t>(record.ExceptionAddress);
  fault.framePointer = exception.ContextRecord->Rbp;
  const bool tellsAccess = fault.code == fault::kAccessViolation || fault.code == fault::kInPageError;
  fault.hasInfo = tellsAccess && record.NumberParameters >= 2;
  if (fault.hasInfo) fault.info = {record.ExceptionInformation[0], record.ExceptionInformation[1]};
  return fault;
}

// A throw taken here would be swallowed without its destructors: it always goes on, whatever the filter answers.
long askFilter(void* state, EXCEPTION_POINTERS* exception) {
  Guard& guard = *static_cast<Guard*>(state);
  const FaultContext fault = contextOf(*exception);
  if (!guard.filter(guard.state, fault) || fault.code == fault::kCppThrow) return EXCEPTION_CONTINUE_SEARCH;
  guard.code = fault.code;
  return EXCEPTION_EXECUTE_HANDLER;
}

bool readWithinPage(std::uintptr_t address, char* out, std::size_t count) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): addresses come from the machine, as numbers
  const void* const place = reinterpret_cast<const void*>(address);
  if (::IsBadReadPtr(place, count) != 0) return false;
  std::memcpy(out, place, count);
  return true;
}

}  // namespace

std::uint32_t runGuarded(void (*work)(void* argument), void* argument, FaultFilter filter, void* state) {
  keepStackForTheFilter();
  Guard guard{filter, state};
  const ExceptionsUnderWay exceptions;
  const FloatControls floats;
  if (win32::runInGuardedBlock(work, argument, &askFilter, &guard)) return 0;
  // The page below the stack guards it once only, until it is set up again.
  if (guard.code == fault::kStackOverflow) (void)::_resetstkoflw();
  exceptions.restore();
  floats.restore();
  return guard.code;
}

void tellUnguardedFaults(FaultWitness) {}

std::size_t readMemory(std::uintptr_t address, void* out, std::size_t count) {
  return readByPages(address, out, count, &readWithinPage);
}

bool isCodeAddress(std::uintptr_t address) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): addresses come from the machine, as numbers
  return ::IsBadCodePtr(reinterpret_cast<FARPROC>(address)) == 0;
}

}  // namespace platform
