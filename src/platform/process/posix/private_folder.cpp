#include "platform/process/private_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLock = "/.owner";

// A lock of its owner's, -1 when there is none to be had.
int lockOf(const std::string& folder, int mode) {
  const int lock = ::open((folder + kLock).c_str(), mode | O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (lock < 0) return -1;
  // Whoever took it away in between has removed the file.
  struct stat status {};
  if (::flock(lock, LOCK_EX | LOCK_NB) == 0 && ::fstat(lock, &status) == 0 && status.st_nlink > 0) return lock;
  ::close(lock);
  return -1;
}

bool isOwn(const std::string& folder) {
  struct stat status {};
  return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
}

void sweep(const std::string& parent, const std::string& prefix) {
  std::error_code error;
  for (fs::directory_iterator entry(parent, error), end; !error && entry != end; entry.increment(error)) {
    const std::string folder = entry->path().string();
    if (!entry->path().filename().string().starts_with(prefix) || !isOwn(folder)) continue;
    const int lock = lockOf(folder, 0);
    if (lock < 0) {
      ::rmdir(folder.c_str());  // one whose owner did not come as far as the lock is empty
      continue;
    }
    std::error_code ignored;
    fs::remove_all(folder, ignored);
    ::close(lock);
  }
}

}  // namespace

std::string temporaryFolder() {
  for (const char* name : {"TMPDIR", "TMP", "TEMP"})
    if (const char* folder = std::getenv(name); folder != nullptr && *folder != '\0') return folder;
  return "/tmp";
}

PrivateFolder::PrivateFolder(const std::string& parent, const std::string& prefix) {
  sweep(parent, prefix);
  const std::string absolute = fs::absolute(parent).lexically_normal().string();
  while (lock_ < 0) {
    path_ = (fs::path(absolute) / (prefix + "XXXXXX")).string();
    if (::mkdtemp(path_.data()) == nullptr)
      throw std::runtime_error("Cannot make a private folder in " + parent + ": " + std::strerror(errno));
    lock_ = lockOf(path_, O_CREAT | O_EXCL);
    if (lock_ >= 0) break;
    // Swept by another between the two steps: once more. Everything else is an error.
    const int error = errno;
    if (error == EWOULDBLOCK || !fs::exists(path_)) continue;
    ::rmdir(path_.c_str());
    throw std::runtime_error("Cannot make a private folder in " + parent + ": " + std::strerror(error));
  }
}

PrivateFolder::~PrivateFolder() {
  ::close(lock_);  // its handle is one that the removal may need
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

}  // namespace platform
