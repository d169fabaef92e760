#include "plugin/util/files.h"

#include <stdexcept>

#include "platform/files.h"
#include "plugin/util/paths.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

bool meansAbsent(std::uint32_t errorNumber) {
  switch (errorNumber) {
    case platform::error::kFileNotFound:
    case platform::error::kPathNotFound:
    case platform::error::kBadNetPath:
    case platform::error::kBadNetName:
    case platform::error::kInvalidName:
      return true;
    default:
      return false;
  }
}

}  // namespace

bool file_exists(const std::u16string& path) {
  const platform::FileAttributes found = platform::files().attributes(path);
  if (found.errorNumber == platform::error::kSuccess) return !found.isDirectory;
  if (meansAbsent(found.errorNumber)) return false;
  throw std::runtime_error("file_exists: Could not get the file attributes of \"" + to_string(path) + "\"");
}

bool directory_exists(const std::u16string& path) {
  const platform::FileAttributes found = platform::files().attributes(path);
  if (found.errorNumber == platform::error::kSuccess) return found.isDirectory;
  if (meansAbsent(found.errorNumber)) return false;
  throw std::runtime_error("boost::filesystem::status: " + to_string(platform::systemErrorText(found.errorNumber)) +
                           ": \"" + to_string(path) + "\"");
}

void make_directories(std::u16string path) {
  if (path.empty()) return;
  if (path.back() == u'\\' || path.back() == u'/') path.pop_back();
  const std::u16string parent = parent_of(path);
  if (parent.size() >= path.size()) return;
  make_directories(parent);
  platform::files().createDirectory(path);  // An existing folder, a drive and a failure are all the same here.
}

}  // namespace corvantis
