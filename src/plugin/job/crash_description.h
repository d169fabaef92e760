// What is told of a machine fault: its name, and a text of process, module, code, addresses and call stack that goes
// into the worker's error reply.
//
// All of this runs inside a fault filter, perhaps with the heap broken and little stack left: nothing here allocates,
// takes a lock, looks at a locale or throws. Numbers are hexadecimal; addresses show their low 32 bits.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/fault_guard.h"
#include "platform/modules.h"

namespace corvantis {

// Text in a buffer of fixed size; what does not fit is cut off.
class CrashText {
 public:
  // With the terminating zero.
  static constexpr std::size_t kSize = 8000;

  CrashText& text(std::string_view text);
  // Upper-case, with zeros in front up to `digits`.
  CrashText& hexadecimal(std::uint32_t value, std::size_t digits = 1);
  // Of a number that is not negative, in the same way.
  CrashText& decimal(int value, std::size_t digits = 1);

  std::string_view view() const { return {buffer_.data(), length_}; }

 private:
  CrashText& number(std::uint32_t value, int base, std::size_t digits);

  std::array<char, kSize> buffer_{};
  std::size_t length_ = 0;
};

// "Unknown SEH Exception Code" for a code that trapped calls do not handle.
const char* sehExceptionName(std::uint32_t code);
// Whether trapped calls handle faults with this code. Float underflow is not among them.
bool isTrappedCode(std::uint32_t code);

// The module whose loaded range contains `address`; otherwise false, and an empty path.
bool findModuleForAddress(std::uintptr_t address, platform::ModuleAt& module);

// Appends two lines for each of at most 20 frames, from the faulting instruction outwards along the chain of frame
// pointers; one line for a frame outside every module. Ends early at a frame that cannot be read or a return
// address that is no code; the faulting instruction need only be readable, so that a jump into data shows.
// Returns the number of characters appended.
std::size_t describeCallStack(const platform::FaultContext& context, CrashText& out);

// Begins with "Process:  ". Without a context only the process and an empty call stack are told. Of the 16 bytes from
// the faulting instruction on, those that can be read are shown: none after a jump to where nothing is.
CrashText describeCrash(const platform::FaultContext* context);

}  // namespace corvantis
