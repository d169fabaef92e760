#include "platform/process/aside_name.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string_view>

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kEnding = ".part";
// A name may have 255 bytes in most file systems.
constexpr std::size_t kKeptOfName = 200;
constexpr std::chrono::hours kDeadAfter{24};

std::string hexadecimal(std::uint32_t number) {
  char text[9];
  std::snprintf(text, sizeof text, "%08x", number);
  return text;
}

// Where the numbers of processes mean what they mean here: this start of this machine, this process namespace.
std::string numberedPlace() {
  std::string start;
  std::getline(std::ifstream("/proc/sys/kernel/random/boot_id"), start);
  std::error_code ignored;
  start += fs::read_symlink("/proc/self/ns/pid", ignored).string();
  return hexadecimal(static_cast<std::uint32_t>(std::hash<std::string>()(start)));
}

const std::string& place() {
  static const std::string instance = numberedPlace();
  return instance;
}

// ".NAME.PLACE-PROCESS-RANDOM.part"
struct Aside {
  std::string place;
  pid_t process = 0;
};

bool read(std::string_view name, Aside& aside) {
  if (!name.starts_with('.') || !name.ends_with(kEnding)) return false;
  name.remove_suffix(kEnding.size());
  const std::string writer(name.substr(name.rfind('.') + 1));
  char found[9] = {};
  unsigned random = 0;
  int end = 0;
  if (std::sscanf(writer.c_str(), "%8[0-9a-f]-%d-%8x%n", found, &aside.process, &random, &end) != 3) return false;
  aside.place = found;
  return static_cast<std::size_t>(end) == writer.size();
}

bool isLeft(const fs::directory_entry& entry) {
  Aside aside;
  if (!read(entry.path().filename().string(), aside)) return false;
  if (aside.place == place()) return ::kill(aside.process, 0) != 0 && errno == ESRCH;
  std::error_code error;
  const auto written = entry.last_write_time(error);
  return !error && fs::file_time_type::clock::now() - written > kDeadAfter;
}

}  // namespace

std::string asideName(const std::string& nativePath) {
  const fs::path path = nativePath;
  return (path.parent_path() /
          ("." + path.filename().string().substr(0, kKeptOfName) + "." + place() + "-" + std::to_string(::getpid()) +
           "-" + hexadecimal(std::random_device()()) + std::string(kEnding)))
      .string();
}

void sweepAside(const std::string& nativeFolder) {
  std::error_code error;
  for (fs::directory_iterator entry(nativeFolder.empty() ? "." : nativeFolder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code ignored;
    if (isLeft(*entry)) fs::remove(entry->path(), ignored);
  }
}

}  // namespace platform
