#include "platform/environment.h"

#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <cstdlib>
#include <filesystem>

#include "platform/files.h"
#include "platform/posix/code_page.h"
#include "platform/posix/native_path.h"

namespace platform {
namespace {

constinit std::atomic<std::uint64_t> pumps{0};

constexpr const char* kSharedData = "/var/lib";

std::string commonFolder() {
  if (const char* chosen = std::getenv("CORVANTIS_COMMON_APPDATA"); chosen != nullptr && *chosen != '\0') {
    return nativePath(windowsPath(chosen));
  }
  if (::access(kSharedData, W_OK | X_OK) == 0) return kSharedData;
  const std::string home = posix::homeFolder();
  return home.empty() ? std::string() : home + "/.local/share";
}

}  // namespace

std::optional<std::u16string> environmentVariable(const std::u16string& name) {
  const char* const value = std::getenv(posix::toNative(name).c_str());
  if (value == nullptr) return std::nullopt;
  return posix::toWide(value);
}

std::u16string commonApplicationDataFolder() {
  std::string folder = commonFolder();
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  if (folder.empty()) return {};
  std::error_code failure;
  std::filesystem::create_directories(folder, failure);
  if (!std::filesystem::is_directory(folder, failure)) return {};
  return windowsPath(folder);
}

std::u16string computerName() {
  char name[HOST_NAME_MAX + 1] = {};
  return ::gethostname(name, sizeof name - 1) == 0 ? posix::toWide(name) : std::u16string();
}

std::uint32_t currentThreadId() { return static_cast<std::uint32_t>(::syscall(SYS_gettid)); }

void pumpMessages() { pumps.fetch_add(1, std::memory_order_relaxed); }

std::uint64_t pumpCount() { return pumps.load(std::memory_order_relaxed); }

bool outputIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

int terminalWidth() {
  winsize size{};
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
  return size.ws_col;
}

ProcessEnd processEnd(int nativeStatus) {
  if (WIFSIGNALED(nativeStatus)) return {WTERMSIG(nativeStatus), true};
  return {WEXITSTATUS(nativeStatus), false};
}

}  // namespace platform
