#include "platform/modules.h"

#include <windows.h>
// After windows.h, which it needs.
#include <tlhelp32.h>

#include <algorithm>

namespace platform {
namespace {

// The modules of the process as they were when it was made. A snapshot may have to be asked for again while modules
// come and go.
class ModuleSnapshot {
 public:
  ModuleSnapshot() {
    do handle_ = ::CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, ::GetCurrentProcessId());
    while (handle_ == INVALID_HANDLE_VALUE && ::GetLastError() == ERROR_BAD_LENGTH);
    entry_.dwSize = sizeof entry_;
  }
  ~ModuleSnapshot() {
    if (handle_ != INVALID_HANDLE_VALUE) ::CloseHandle(handle_);
  }
  ModuleSnapshot(const ModuleSnapshot&) = delete;
  ModuleSnapshot& operator=(const ModuleSnapshot&) = delete;

  // The next module, from the first one on; null at the end.
  const MODULEENTRY32W* next() {
    if (handle_ == INVALID_HANDLE_VALUE) return nullptr;
    const BOOL found = isFirst_ ? ::Module32FirstW(handle_, &entry_) : ::Module32NextW(handle_, &entry_);
    isFirst_ = false;
    return found != 0 ? &entry_ : nullptr;
  }

 private:
  HANDLE handle_ = INVALID_HANDLE_VALUE;
  MODULEENTRY32W entry_{};
  bool isFirst_ = true;
};

std::uintptr_t baseOf(const MODULEENTRY32W& module) { return reinterpret_cast<std::uintptr_t>(module.modBaseAddr); }

// The snapshot's entry is large: one place for it, off the caller's frame.
bool findEntry(std::uintptr_t address, MODULEENTRY32W& found) {
  ModuleSnapshot snapshot;
  while (const MODULEENTRY32W* const module = snapshot.next()) {
    if (address < baseOf(*module) || address - baseOf(*module) >= module->modBaseSize) continue;
    found = *module;
    return true;
  }
  return false;
}

bool dateOf(HANDLE file, FileDate& date) {
  FILETIME written{};
  FILETIME local{};
  SYSTEMTIME fields{};
  const bool known = ::GetFileTime(file, nullptr, nullptr, &written) != 0 &&
                     ::FileTimeToLocalFileTime(&written, &local) != 0 && ::FileTimeToSystemTime(&local, &fields) != 0;
  if (known) date = {fields.wMonth, fields.wDay, fields.wYear};
  return known;
}

}  // namespace

bool findModule(std::uintptr_t address, ModuleAt& module) {
  MODULEENTRY32W entry{};
  if (!findEntry(address, entry)) return false;
  // Room for two bytes a unit, of which the first 259 bytes are kept.
  std::array<char, 2 * MAX_PATH> path{};
  ::WideCharToMultiByte(CP_ACP, 0, entry.szExePath, -1, path.data(), static_cast<int>(path.size()), nullptr, nullptr);
  std::copy_n(path.begin(), module.path.size() - 1, module.path.begin());
  module.path.back() = '\0';
  module.base = baseOf(entry);
  return true;
}

void findProgram(ModuleAt& module) {
  ::GetModuleFileNameA(nullptr, module.path.data(), static_cast<DWORD>(module.path.size()));
  module.path.back() = '\0';
}

bool lastWriteDate(std::uintptr_t address, FileDate& date) {
  ModuleAt module;
  if (!findModule(address, module)) return false;
  const HANDLE file = ::CreateFileA(module.path.data(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  const bool known = dateOf(file, date);
  ::CloseHandle(file);
  return known;
}

}  // namespace platform
