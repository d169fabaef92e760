#include "support/faults.h"

#include <xmmintrin.h>

#include <limits>

#include "support/platform_kind.h"

// Kept out of the optimiser's and the sanitizers' sight: the faults are meant.
#define CORVANTIS_FAULTS __attribute__((noinline, no_sanitize("undefined", "address")))

namespace support {
namespace {

CORVANTIS_FAULTS volatile int* at(std::uintptr_t address) {
  volatile std::uintptr_t hidden = address;
  return reinterpret_cast<volatile int*>(hidden);
}

// What earlier work has raised unnoticed goes first: the trap that comes would be taken for it.
void enableFloatTraps() {
  const unsigned quiet = _mm_getcsr() & ~static_cast<unsigned>(_MM_EXCEPT_MASK);
  _mm_setcsr(quiet & ~static_cast<unsigned>(_MM_MASK_MASK & ~_MM_MASK_INEXACT));
}

}  // namespace

CORVANTIS_FAULTS void writeToNull() { *at(0) = 1; }

CORVANTIS_FAULTS int readFromNull() { return *at(0); }

CORVANTIS_FAULTS void callUnmapped() {
  volatile std::uintptr_t hidden = kUnmappedAddress;
  reinterpret_cast<void (*)()>(hidden)();
}

CORVANTIS_FAULTS void readImpossibleAddress() { (void)*at(0xABCD000000000000); }

CORVANTIS_FAULTS int divideIntegerByZero() {
  volatile int one = 1;
  volatile int zero = 0;
  return one / zero;
}

CORVANTIS_FAULTS void executeIllegalInstruction() { __builtin_trap(); }

CORVANTIS_FAULTS int overflowStack(int depth) {
  volatile int frame[64] = {};
  frame[depth % 64] = depth;
  if (depth < 0) return 0;  // never, but the compiler is not to know
  return overflowStack(depth + 1) + frame[depth % 64];
}

bool stackOverflowCanBeTold() { return !runsUnderWine() || __builtin_cpu_supports("avx512f") == 0; }

CORVANTIS_FAULTS double divideFloatByZero() {
  enableFloatTraps();
  volatile double one = 1.0;
  volatile double zero = 0.0;
  return one / zero;
}

CORVANTIS_FAULTS double underflowFloat() {
  enableFloatTraps();
  volatile double small = std::numeric_limits<double>::min();
  return small * small;
}

}  // namespace support
