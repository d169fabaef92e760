#include "platform/environment.h"

#include <windows.h>
// After windows.h, which they need.
#include <shlobj.h>

#include <array>
#include <atomic>

#include "platform/win32/wide.h"

namespace platform {
namespace {

constinit std::atomic<std::uint64_t> pumps{0};

}  // namespace

std::optional<std::u16string> environmentVariable(const std::u16string& name) {
  std::u16string value;
  // Another thread may lengthen the variable between two calls.
  for (;;) {
    ::SetLastError(ERROR_SUCCESS);
    const DWORD size =
        ::GetEnvironmentVariableW(win32::wide(name), win32::buffer(value), static_cast<DWORD>(value.size()));
    if (size == 0 && ::GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
    const bool isWhole = size < value.size() || size == 0;
    value.resize(size);
    if (isWhole) return value;
  }
}

std::u16string commonApplicationDataFolder() {
  std::array<wchar_t, MAX_PATH> folder{};
  constexpr int kCommonDataCreated = CSIDL_COMMON_APPDATA | CSIDL_FLAG_CREATE;
  if (::SHGetFolderPathW(nullptr, kCommonDataCreated, nullptr, SHGFP_TYPE_CURRENT, folder.data()) != S_OK) return {};
  return win32::text(folder.data());
}

std::u16string computerName() {
  std::array<wchar_t, MAX_COMPUTERNAME_LENGTH + 1> name{};
  DWORD size = name.size();
  return ::GetComputerNameW(name.data(), &size) != 0 ? win32::text(name.data()) : std::u16string();
}

std::uint32_t currentThreadId() { return ::GetCurrentThreadId(); }

void pumpMessages() {
  pumps.fetch_add(1, std::memory_order_relaxed);
  MSG message{};
  while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
  }
}

std::uint64_t pumpCount() { return pumps.load(std::memory_order_relaxed); }

bool outputIsTerminal() {
  DWORD mode = 0;
  return ::GetConsoleMode(::GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0;
}

int terminalWidth() {
  CONSOLE_SCREEN_BUFFER_INFO screen{};
  if (::GetConsoleScreenBufferInfo(::GetStdHandle(STD_OUTPUT_HANDLE), &screen) == 0) return 80;
  return screen.srWindow.Right - screen.srWindow.Left + 1;
}

ProcessEnd processEnd(int nativeStatus) { return {nativeStatus, false}; }

}  // namespace platform
