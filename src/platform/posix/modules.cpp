#include "platform/modules.h"

#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <string_view>

#include "platform/posix/code_page.h"
#include "platform/posix/local_date.h"

namespace platform {
namespace {

bool dateOf(const char* native, FileDate& date) {
  struct stat status {};
  if (::stat(native, &status) != 0) return false;
  date = posix::localDate(status.st_mtim.tv_sec);
  return true;
}

constexpr const char* kProgramLink = "/proc/self/exe";

struct NativeName {
  std::array<char, PATH_MAX> bytes{};
  std::size_t length = 0;
};

NativeName programName() {
  NativeName name;
  const ssize_t length = ::readlink(kProgramLink, name.bytes.data(), name.bytes.size());
  name.length = length > 0 ? static_cast<std::size_t>(length) : 0;
  return name;
}

void setPath(ModuleAt& module, std::string_view native) {
  std::size_t length = 0;
  const auto put = [&](char byte) {
    if (length + 1 < module.path.size()) module.path[length++] = byte;
  };
  for (std::size_t position = 0; position < native.size();) {
    const char32_t point = posix::nextCodePoint(native, position);
    put(point == U'/' ? '\\' : posix::toWindows1252(point));
    if (point > 0xFFFF) put('?');
  }
  module.path[length] = '\0';
}

bool isProgram(const dl_find_object& found) { return found.dlfo_link_map->l_name[0] == '\0'; }

bool findObject(std::uintptr_t address, dl_find_object& found) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): addresses come from the machine, as numbers
  return ::_dl_find_object(reinterpret_cast<void*>(address), &found) == 0;
}

}  // namespace

// The unwinder's look-up is the one that may be made from a signal handler.
bool findModule(std::uintptr_t address, ModuleAt& module) {
  dl_find_object found{};
  if (!findObject(address, found)) return false;
  if (isProgram(found)) {
    findProgram(module);
  } else {
    setPath(module, found.dlfo_link_map->l_name);
  }
  module.base = reinterpret_cast<std::uintptr_t>(found.dlfo_map_start);
  return true;
}

void findProgram(ModuleAt& module) {
  const NativeName name = programName();
  setPath(module, {name.bytes.data(), name.length});
}

bool lastWriteDate(std::uintptr_t address, FileDate& date) {
  dl_find_object found{};
  return findObject(address, found) && dateOf(isProgram(found) ? kProgramLink : found.dlfo_link_map->l_name, date);
}

}  // namespace platform
