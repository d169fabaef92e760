// Files and folders under Windows paths and with Windows error numbers, on every platform.
//
// Paths are UTF-16 Windows paths. On POSIX they become native at the last moment: "\" turns into "/"; a path without a
// drive is native; "X:" is the folder or link "x:" below the drives folder ($CORVANTIS_DRIVES, else
// ~/.local/share/corvantis/drives); "\\server\share" is <drives>/unc/server/share. Below a drive or share "." and ".."
// are carried out by text and never climb above it, and "C:x" is "C:\x". A drive that is not there answers 3, a
// share 53.
//
// Invalid names answer 123: an embedded NUL and a component too long for the file system everywhere; control
// characters,
// <>"|?* and a further colon below a drive or share only, since a native path may well contain them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace platform {

// Windows error numbers that the system's rules name. 0 is success.
namespace error {
inline constexpr std::uint32_t kSuccess = 0;
inline constexpr std::uint32_t kFileNotFound = 2;
inline constexpr std::uint32_t kPathNotFound = 3;
inline constexpr std::uint32_t kAccessDenied = 5;
inline constexpr std::uint32_t kInvalidDrive = 15;
inline constexpr std::uint32_t kNotReady = 21;
inline constexpr std::uint32_t kSharingViolation = 32;
inline constexpr std::uint32_t kBadNetPath = 53;
inline constexpr std::uint32_t kBadNetName = 67;
inline constexpr std::uint32_t kFileExists = 80;
inline constexpr std::uint32_t kInvalidParameter = 87;
inline constexpr std::uint32_t kDiskFull = 112;
inline constexpr std::uint32_t kInvalidName = 123;
inline constexpr std::uint32_t kBadPathName = 161;
inline constexpr std::uint32_t kAlreadyExists = 183;
}  // namespace error

struct FileAttributes {
  std::uint32_t errorNumber = error::kSuccess;  // not 0: nothing else is meaningful
  bool isDirectory = false;
};

class Files {
 public:
  virtual ~Files() = default;

  virtual FileAttributes attributes(const std::u16string& path) = 0;
  // Creates one folder; its parent must exist. Every call returns a Windows error number, 0 for success.
  virtual std::uint32_t createDirectory(const std::u16string& path) = 0;
  // Replaces an existing destination; the time of the last write goes with the copy. On failure the old destination, or
  // none, is there, never a part. On POSIX the copy is made aside and renamed, so the folder must be writable.
  virtual std::uint32_t copyFile(const std::u16string& source, const std::u16string& destination) = 0;
  virtual std::uint32_t deleteFile(const std::u16string& path) = 0;
  // Whether both names lead to one file, in whatever spelling, through whatever drive or link; a second hard link is
  // the same file. A link at the end of `path` is itself, not what it leads to: deleting `path` deletes the file only
  // where this is true. False when either cannot be looked at, or the system cannot tell.
  virtual bool isSameFile(const std::u16string& path, const std::u16string& file) = 0;
};

// The file layer in force: the system's own unless a test replaces it by one that fails on demand.
Files& files();

class FilesReplacement {
 public:
  explicit FilesReplacement(Files& replacement);
  ~FilesReplacement();
  FilesReplacement(const FilesReplacement&) = delete;
  FilesReplacement& operator=(const FilesReplacement&) = delete;

 private:
  Files* previous_;
};

// The system's text for a Windows error number, without the line ends at its end; empty when there is none. On POSIX
// the English texts of the numbers that windowsErrorNumber answers stand in, and "" for the rest.
std::u16string systemErrorText(std::uint32_t errorNumber);

// The native path behind a Windows path (on Windows the path itself in UTF-8), for handing to a library that opens
// files by itself. Never fails: a drive that is not there gives a path that does not exist.
std::string nativePath(std::u16string_view path);

// The Windows path of a native one: absolute and relative paths keep their shape, "/" turns into "\". Leading
// separators are cut to one, lest a share come of them; bytes that are not UTF-8 become U+FFFD.
std::u16string windowsPath(std::string_view native);

// The Windows error number that stands for one of the platform's own (errno on POSIX); 31, a general failure, for those
// without a counterpart. A missing file is 2: whether its folder is missing too, only the calls above can tell.
std::uint32_t windowsErrorNumber(int nativeError);

// A text file open for writing: truncated when opened, readable by others meanwhile, unbuffered. Line ends are the
// platform's own.
class TextFile {
 public:
  virtual ~TextFile() = default;
  // False when not every byte could be written.
  virtual bool write(std::string_view bytes) = 0;
};
// Null when the file cannot be opened.
std::unique_ptr<TextFile> openTextFile(const std::u16string& path);

}  // namespace platform
