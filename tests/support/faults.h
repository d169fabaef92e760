// Real machine faults, on demand.
#pragma once

#include <cstdint>

namespace support {

void writeToNull();
int readFromNull();
// Jumps to an address where nothing is.
inline constexpr std::uintptr_t kUnmappedAddress = 0x10;
void callUnmapped();
// Reads at an address outside the form that the processor allows.
void readImpossibleAddress();
int divideIntegerByZero();
void executeIllegalInstruction();
// Recurses until the stack ends.
int overflowStack(int depth = 0);
// False where the system itself ends a process whose stack has run out: Wine, when the processor's state (AVX-512)
// needs more room on the stack than the one page that Wine keeps free, whatever a guard asks for.
bool stackOverflowCanBeTold();
// With float traps on, which stay on.
double divideFloatByZero();
double underflowFloat();

}  // namespace support
