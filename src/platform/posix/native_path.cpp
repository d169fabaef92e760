#include "platform/posix/native_path.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "platform/files.h"
#include "platform/posix/code_page.h"

namespace platform {
namespace posix {
namespace {

constexpr std::u16string_view kSeparators = u"\\/";
constexpr std::u16string_view kForbidden = u"<>:\"|?*";

bool isSeparator(char16_t unit) { return unit == u'\\' || unit == u'/'; }

bool startsWithDrive(std::u16string_view path) {
  if (path.size() < 2 || path[1] != u':') return false;
  const char16_t letter = path[0] | 0x20;
  return letter >= u'a' && letter <= u'z';
}

bool isNetworkPath(std::u16string_view path) {
  return path.size() >= 2 && isSeparator(path[0]) && isSeparator(path[1]);
}

bool isNameOnWindows(std::u16string_view text) {
  return std::none_of(text.begin(), text.end(),
                      [](char16_t unit) { return unit < 0x20 || kForbidden.find(unit) != std::u16string_view::npos; });
}

std::string drivesFolder() {
  if (const char* chosen = std::getenv("CORVANTIS_DRIVES"); chosen != nullptr && *chosen != '\0') return chosen;
  return homeFolder() + "/.local/share/corvantis/drives";
}

// The components of a path without drive, with "." and ".." carried out as Windows does: by text, never above the root.
std::vector<std::u16string_view> components(std::u16string_view text) {
  std::vector<std::u16string_view> names;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(kSeparators), text.size());
    const std::u16string_view name = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (name == u"..") {
      if (!names.empty()) names.pop_back();
    } else if (!name.empty() && name != u".") {
      names.push_back(name);
    }
  }
  return names;
}

NativePath below(std::string root, std::u16string_view rest, std::uint32_t missingRoot) {
  NativePath located;
  located.missingRoot = missingRoot;
  located.path = root;
  located.root = std::move(root);
  for (const std::u16string_view name : components(rest)) located.path.append("/").append(toNative(name));
  if (!rest.empty() && isSeparator(rest.back())) located.path += '/';
  return located;
}

// "\\server\share\rest". Server and share are no components that ".." could climb over.
NativePath locateOnNetwork(std::u16string_view path) {
  path.remove_prefix(2);
  std::string root = drivesFolder() + "/unc";
  for (int level = 0; level < 2; ++level) {
    const std::size_t end = std::min(path.find_first_of(kSeparators), path.size());
    const std::u16string_view name = path.substr(0, end);
    if (name.empty() || name == u"." || name == u"..") return {{}, {}, error::kBadNetPath, error::kBadNetPath};
    root.append("/").append(toNative(name));
    path.remove_prefix(level == 0 ? std::min(end + 1, path.size()) : end);
  }
  return below(std::move(root), path, error::kBadNetPath);
}

NativePath locateOnDrive(std::u16string_view path) {
  const std::string name = {static_cast<char>(path[0] | 0x20), ':'};
  return below(drivesFolder() + "/" + name, path.substr(2), error::kPathNotFound);
}

NativePath locateNatively(std::u16string_view path) {
  NativePath located;
  located.path = toNative(path);
  std::replace(located.path.begin(), located.path.end(), '\\', '/');
  return located;
}

}  // namespace

std::string homeFolder() {
  std::string folder;
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') {
    folder = home;
  } else {
    std::array<char, 4096> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
      folder = entry.pw_dir;
    }
  }
  while (!folder.empty() && folder.back() == '/') folder.pop_back();
  return folder;
}

NativePath locate(std::u16string_view path) {
  const bool onDrive = startsWithDrive(path);
  const bool onNetwork = !onDrive && isNetworkPath(path);
  if (path.empty()) return {{}, {}, error::kPathNotFound, 0};
  if (path.find(u'\0') != std::u16string_view::npos) return {{}, {}, error::kInvalidName, 0};
  if ((onDrive || onNetwork) && !isNameOnWindows(path.substr(2))) return {{}, {}, error::kInvalidName, 0};
  if (onDrive) return locateOnDrive(path);
  if (onNetwork) return locateOnNetwork(path);
  return locateNatively(path);
}

}  // namespace posix

std::string nativePath(std::u16string_view path) {
  if (path.empty()) return {};
  posix::NativePath located = posix::locate(path);
  // Nothing can lie below a device that is no folder.
  return located.errorNumber == error::kSuccess ? located.path
                                                : "/dev/null/" + posix::toNative(path.substr(0, path.find(u'\0')));
}

std::u16string windowsPath(std::string_view native) {
  // Two leading separators would make a network path of it.
  while (native.size() > 1 && native[0] == '/' && native[1] == '/') native.remove_prefix(1);
  std::u16string path = posix::toWide(native);
  std::replace(path.begin(), path.end(), u'/', u'\\');
  return path;
}

}  // namespace platform
