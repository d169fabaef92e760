// Runs work under a guard that catches machine faults (Windows structured exceptions; signals on POSIX, on an alternate
// stack). Guards nest, and several threads may have theirs at once; the innermost filter of the thread that accepts
// wins. A fault that no guard takes goes the way it went before: earlier handlers are chained, and restored when the
// last guard of the process ends. A library that takes the signals for itself meanwhile keeps them until the next guard
// begins, which goes before it.
//
// Destructors between the fault and the guard do not run: the faulting work is abandoned where it stood. What the guard
// itself puts right: the signal mask, the floating-point environment (as it was when the guard began) and the list of
// exceptions being handled.
//
// On POSIX the faults are SIGSEGV, SIGBUS, SIGFPE and SIGILL raised by the machine; the same signals sent by a process
// are none. A fault inside a filter ends the process. x86 does not tell an overflowing integer division from one by
// zero: it is reported as the latter.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace platform {

// Windows exception codes; on POSIX the signal and its details are turned into the one that fits.
namespace fault {
inline constexpr std::uint32_t kAccessViolation = 0xC0000005;
inline constexpr std::uint32_t kInPageError = 0xC0000006;
inline constexpr std::uint32_t kIllegalInstruction = 0xC000001D;
inline constexpr std::uint32_t kArrayBoundsExceeded = 0xC000008C;
inline constexpr std::uint32_t kFloatDenormalOperand = 0xC000008D;
inline constexpr std::uint32_t kFloatDivideByZero = 0xC000008E;
inline constexpr std::uint32_t kFloatInexactResult = 0xC000008F;
inline constexpr std::uint32_t kFloatInvalidOperation = 0xC0000090;
inline constexpr std::uint32_t kFloatOverflow = 0xC0000091;
inline constexpr std::uint32_t kFloatStackCheck = 0xC0000092;
inline constexpr std::uint32_t kFloatUnderflow = 0xC0000093;
inline constexpr std::uint32_t kIntegerDivideByZero = 0xC0000094;
inline constexpr std::uint32_t kIntegerOverflow = 0xC0000095;
inline constexpr std::uint32_t kPrivilegedInstruction = 0xC0000096;
inline constexpr std::uint32_t kStackOverflow = 0xC00000FD;
inline constexpr std::uint32_t kDatatypeMisalignment = 0x80000002;
// A C++ throw. On Windows a guard sees throws pass; on POSIX it sees them when they leave the guarded work.
inline constexpr std::uint32_t kCppThrow = 0xE06D7363;
}  // namespace fault

// What a filter is told. Valid only while the filter runs.
struct FaultContext {
  std::uint32_t code = 0;
  std::uintptr_t address = 0;            // of the faulting instruction
  std::uintptr_t framePointer = 0;       // frame-pointer register of the faulting context
  std::array<std::uintptr_t, 2> info{};  // access violation: 1 for a write or 0 for a read, then the address
  bool hasInfo = false;
};

// The filter runs on the faulting thread before anything is unwound, possibly on a small stack: it must not throw and
// must not touch what the fault may have broken: the heap above all, whose lock the faulting code may hold. True:
// abandon the work and return from runGuarded. It has at least 64 KiB of stack.
using FaultFilter = bool (*)(void* state, const FaultContext& context);

// Runs work(argument). Returns 0 when it returned normally, else the code of the fault that the filter accepted.
// A thrown exception passes through unchanged, after the filter has seen it with code kCppThrow (its answer is
// ignored). On POSIX the address told of a throw is the guard's own: where it was thrown is no longer known by then.
std::uint32_t runGuarded(void (*work)(void* argument), void* argument, FaultFilter filter, void* state);

// Told of a fault on a thread that has no guard while another has one, before it goes its way; POSIX only (Windows
// reports such a fault itself). It runs as a filter does, though on that thread's own stack where it has no other.
using FaultWitness = void (*)(const FaultContext& fault);
// There is one witness; null for none.
void tellUnguardedFaults(FaultWitness witness);

// Copies `count` bytes from `address` as far as they can be read, without faulting; returns how many were copied.
// Safe inside a filter.
std::size_t readMemory(std::uintptr_t address, void* out, std::size_t count);
// Whether `address` lies in readable, executable memory. Safe inside a filter.
bool isCodeAddress(std::uintptr_t address);

}  // namespace platform
