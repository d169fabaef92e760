// The modules (program and libraries) loaded into the process.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace platform {

struct Module {
  std::u16string path;
  std::uintptr_t base = 0;
  std::size_t size = 0;  // bytes from base
};

// Loader order: the program first.
std::vector<Module> loadedModules();
// The program's own path.
std::u16string programPath();

struct FileDate {
  int month = 0, day = 0, year = 0;  // local time
};
// Last write time of a file; false when it cannot be read.
bool lastWriteDate(const std::u16string& path, FileDate& date);

// The three below are for fault filters: they allocate nothing, take no lock that the fault may have left held, and
// never throw. They see what is loaded at that moment, libraries loaded since the guard began included.
struct ModuleAt {
  std::array<char, 260> path{};  // NUL-terminated, in the ANSI code page, cut at 259 bytes
  std::uintptr_t base = 0;
  std::size_t size = 0;
};
bool findModule(std::uintptr_t address, ModuleAt& module);
// The program itself: path only.
void findProgram(ModuleAt& module);
// As above, for the file of the module that contains `address`.
bool lastWriteDate(std::uintptr_t address, FileDate& date);

}  // namespace platform
