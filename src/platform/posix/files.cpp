#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <optional>

#include "platform/posix/native_path.h"
#include "platform/system_layers.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

bool isFolder(const std::string& native) {
  struct stat status {};
  return ::stat(native.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::string parentOf(const std::string& native) {
  std::string path = native;
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// Windows tells a missing file from a missing folder above it.
std::uint32_t errorAt(const posix::NativePath& located, int nativeError) {
  if (nativeError == ENOENT && !isFolder(parentOf(located.path))) return error::kPathNotFound;
  return windowsErrorNumber(nativeError);
}

// The error that stands before any system call: an impossible name, or a drive or share that is not there.
std::uint32_t preliminaryError(const posix::NativePath& located) {
  if (located.errorNumber != error::kSuccess) return located.errorNumber;
  if (!located.root.empty() && !isFolder(located.root)) return located.missingRoot;
  return error::kSuccess;
}

// A new file in a folder, removed at the end unless renamed.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& folder) : path_(folder + "/.corvantis-copy-XXXXXX") {
    const int fd = ::mkostemp(path_.data(), O_CLOEXEC);
    failure_ = fd < 0 ? errno : 0;
    if (fd >= 0) ::close(fd);
    removes_ = fd >= 0;
  }
  ~TemporaryFile() {
    if (removes_) ::unlink(path_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::string& path() const { return path_; }
  int failure() const { return failure_; }
  bool renameTo(const std::string& destination) {
    if (::rename(path_.c_str(), destination.c_str()) != 0) return false;
    removes_ = false;
    return true;
  }

 private:
  std::string path_;
  int failure_ = 0;
  bool removes_ = false;
};

// What a rename onto the destination would change that writing into it would not: links are followed, and an existing
// file keeps its permissions.
struct Target {
  std::string path;
  std::optional<mode_t> permissions;
};

std::uint32_t findTarget(const posix::NativePath& destination, const struct stat& source, Target& target) {
  target.path = destination.path;
  struct stat status {};
  if (::stat(destination.path.c_str(), &status) != 0) {
    return errno == ENOENT ? error::kSuccess : errorAt(destination, errno);
  }
  if (S_ISDIR(status.st_mode)) return error::kAccessDenied;
  if (status.st_dev == source.st_dev && status.st_ino == source.st_ino) return error::kSharingViolation;
  if (::access(destination.path.c_str(), W_OK) != 0) return errorAt(destination, errno);
  target.permissions = status.st_mode & 07777;
  std::error_code failure;
  const fs::path resolved = fs::canonical(destination.path, failure);
  if (!failure) target.path = resolved.string();
  return error::kSuccess;
}

std::uint32_t copyContent(const std::string& source, const Target& target) {
  TemporaryFile aside(parentOf(target.path));
  if (aside.failure() == ENOENT) return error::kPathNotFound;
  if (aside.failure() != 0) return windowsErrorNumber(aside.failure());
  std::error_code failure;
  fs::copy_file(source, aside.path(), fs::copy_options::overwrite_existing, failure);
  if (failure) return windowsErrorNumber(failure.value());
  if (target.permissions) ::chmod(aside.path().c_str(), *target.permissions);
  const fs::file_time_type written = fs::last_write_time(source, failure);
  if (!failure) fs::last_write_time(aside.path(), written, failure);
  return aside.renameTo(target.path) ? error::kSuccess : windowsErrorNumber(errno);
}

class SystemFiles final : public Files {
 public:
  FileAttributes attributes(const std::u16string& path) override {
    const posix::NativePath located = posix::locate(path);
    if (const std::uint32_t number = preliminaryError(located); number != error::kSuccess) return {number, false};
    struct stat status {};
    if (::stat(located.path.c_str(), &status) != 0) return {errorAt(located, errno), false};
    return {error::kSuccess, S_ISDIR(status.st_mode)};
  }

  std::uint32_t createDirectory(const std::u16string& path) override {
    const posix::NativePath located = posix::locate(path);
    if (const std::uint32_t number = preliminaryError(located); number != error::kSuccess) return number;
    if (::mkdir(located.path.c_str(), 0777) == 0) return error::kSuccess;
    return errno == ENOENT ? error::kPathNotFound : windowsErrorNumber(errno);
  }

  std::uint32_t copyFile(const std::u16string& source, const std::u16string& destination) override {
    const posix::NativePath from = posix::locate(source);
    const posix::NativePath to = posix::locate(destination);
    if (const std::uint32_t number = preliminaryError(from); number != error::kSuccess) return number;
    if (const std::uint32_t number = preliminaryError(to); number != error::kSuccess) return number;
    struct stat status {};
    if (::stat(from.path.c_str(), &status) != 0) return errorAt(from, errno);
    if (S_ISDIR(status.st_mode)) return error::kAccessDenied;
    Target target;
    if (const std::uint32_t number = findTarget(to, status, target); number != error::kSuccess) return number;
    return copyContent(from.path, target);
  }

  std::uint32_t deleteFile(const std::u16string& path) override {
    const posix::NativePath located = posix::locate(path);
    if (const std::uint32_t number = preliminaryError(located); number != error::kSuccess) return number;
    return ::unlink(located.path.c_str()) == 0 ? error::kSuccess : errorAt(located, errno);
  }

  bool isSameFile(const std::u16string& path, const std::u16string& file) override {
    struct stat one {};
    struct stat other {};
    if (::lstat(posix::locate(path).path.c_str(), &one) != 0) return false;
    if (::stat(posix::locate(file).path.c_str(), &other) != 0) return false;
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
  }
};

class PosixTextFile final : public TextFile {
 public:
  explicit PosixTextFile(int descriptor) : descriptor_(descriptor) {}
  ~PosixTextFile() override { ::close(descriptor_); }

  bool write(std::string_view bytes) override {
    while (!bytes.empty()) {
      const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
      if (written > 0) {
        bytes.remove_prefix(static_cast<std::size_t>(written));
      } else if (written == 0 || errno != EINTR) {
        return false;
      }
    }
    return true;
  }

 private:
  int descriptor_;
};

}  // namespace

Files& systemFiles() {
  static SystemFiles instance;
  return instance;
}

std::unique_ptr<TextFile> openTextFile(const std::u16string& path) {
  const posix::NativePath located = posix::locate(path);
  if (preliminaryError(located) != error::kSuccess) return nullptr;
  const int descriptor = ::open(located.path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  return descriptor < 0 ? nullptr : std::make_unique<PosixTextFile>(descriptor);
}

}  // namespace platform
