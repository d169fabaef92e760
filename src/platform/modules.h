// The modules (program and libraries) loaded into the process, for fault filters: nothing here allocates, takes a lock
// that the fault may have left held, or throws. What is loaded at that moment is seen, libraries loaded since the guard
// began included.
#pragma once

#include <array>
#include <cstdint>

namespace platform {

struct ModuleAt {
  std::array<char, 260> path{};  // NUL-terminated, in the ANSI code page, cut at 259 bytes
  std::uintptr_t base = 0;
};
// The module that contains `address`; false when none does.
bool findModule(std::uintptr_t address, ModuleAt& module);
// The program itself: path only.
void findProgram(ModuleAt& module);

// Local, by the zone's present distance from UTC: on POSIX the one when the last guard began.
struct FileDate {
  int month = 0, day = 0, year = 0;
};
// Last write time of the file of the module that contains `address`; false when it cannot be read.
bool lastWriteDate(std::uintptr_t address, FileDate& date);

}  // namespace platform
