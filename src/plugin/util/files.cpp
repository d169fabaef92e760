#include "plugin/util/files.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "platform/files.h"
#include "plugin/util/paths.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

namespace error = platform::error;

// The errors that the two tests take for the answer that nothing is there. They differ: that of files names five of its
// own, that of folders follows Boost.Filesystem's status, for which a file that nobody may look at is no folder either.
constexpr std::array kNoFile = {error::kFileNotFound, error::kPathNotFound, error::kBadNetPath, error::kBadNetName,
                                error::kInvalidName};
constexpr std::array kNoFolder = {error::kFileNotFound,     error::kPathNotFound,     error::kInvalidDrive,
                                  error::kNotReady,         error::kSharingViolation, error::kBadNetPath,
                                  error::kInvalidParameter, error::kInvalidName,      error::kBadPathName};

template <std::size_t size>
bool isAmong(const std::array<std::uint32_t, size>& numbers, std::uint32_t number) {
  return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

}  // namespace

bool file_exists(const std::u16string& path) {
  const platform::FileAttributes found = platform::files().attributes(path);
  if (found.errorNumber == platform::error::kSuccess) return !found.isDirectory;
  if (isAmong(kNoFile, found.errorNumber)) return false;
  throw std::runtime_error("file_exists: Could not get the file attributes of \"" + to_string(path) + "\"");
}

bool directory_exists(const std::u16string& path) {
  const platform::FileAttributes found = platform::files().attributes(path);
  if (found.errorNumber == platform::error::kSuccess) return found.isDirectory;
  if (isAmong(kNoFolder, found.errorNumber)) return false;
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
