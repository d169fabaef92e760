#include <algorithm>
#include <array>
#include <cerrno>

#include "platform/files.h"

namespace platform {
namespace {

struct NumberPair {
  int native;
  std::uint32_t windows;
};

constexpr std::array kNumbers = {
    NumberPair{0, error::kSuccess},
    NumberPair{ENOENT, error::kFileNotFound},
    NumberPair{ENOTDIR, error::kPathNotFound},
    NumberPair{EMFILE, 4},
    NumberPair{ENFILE, 4},
    NumberPair{EACCES, error::kAccessDenied},
    NumberPair{EPERM, error::kAccessDenied},
    NumberPair{EISDIR, error::kAccessDenied},
    NumberPair{ENOMEM, 8},
    NumberPair{EXDEV, 17},
    NumberPair{EROFS, 19},
    NumberPair{EBUSY, error::kSharingViolation},
    NumberPair{ETXTBSY, error::kSharingViolation},
    NumberPair{EINVAL, error::kInvalidParameter},
    NumberPair{ENOSPC, error::kDiskFull},
    NumberPair{EDQUOT, error::kDiskFull},
    NumberPair{ENAMETOOLONG, error::kInvalidName},
    NumberPair{EILSEQ, error::kInvalidName},
    NumberPair{ENOTEMPTY, 145},
    NumberPair{EEXIST, error::kAlreadyExists},
    NumberPair{EFBIG, 223},
    NumberPair{EIO, 1117},
    NumberPair{ELOOP, 1921},
};
constexpr std::uint32_t kGeneralFailure = 31;

struct Text {
  std::uint32_t number;
  std::u16string_view text;
};

constexpr std::array kTexts = {
    Text{error::kSuccess, u"The operation completed successfully."},
    Text{error::kFileNotFound, u"The system cannot find the file specified."},
    Text{error::kPathNotFound, u"The system cannot find the path specified."},
    Text{4, u"The system cannot open the file."},
    Text{error::kAccessDenied, u"Access is denied."},
    Text{8, u"Not enough memory resources are available to process this command."},
    Text{17, u"The system cannot move the file to a different disk drive."},
    Text{19, u"The media is write protected."},
    Text{kGeneralFailure, u"A device attached to the system is not functioning."},
    Text{error::kSharingViolation, u"The process cannot access the file because it is being used by another process."},
    Text{error::kBadNetPath, u"The network path was not found."},
    Text{error::kBadNetName, u"The network name cannot be found."},
    Text{error::kFileExists, u"The file exists."},
    Text{error::kInvalidParameter, u"The parameter is incorrect."},
    Text{error::kDiskFull, u"There is not enough space on the disk."},
    Text{error::kInvalidName, u"The filename, directory name, or volume label syntax is incorrect."},
    Text{145, u"The directory is not empty."},
    Text{error::kAlreadyExists, u"Cannot create a file when that file already exists."},
    Text{223, u"The file size exceeds the limit allowed and cannot be saved."},
    Text{1117, u"The request could not be performed because of an I/O device error."},
    Text{1921, u"The name of the file cannot be resolved by the system."},
};

}  // namespace

std::uint32_t windowsErrorNumber(int nativeError) {
  const auto* const found = std::find_if(kNumbers.begin(), kNumbers.end(),
                                         [&](const NumberPair& pair) { return pair.native == nativeError; });
  return found != kNumbers.end() ? found->windows : kGeneralFailure;
}

std::u16string systemErrorText(std::uint32_t errorNumber) {
  const auto* const found =
      std::find_if(kTexts.begin(), kTexts.end(), [&](const Text& entry) { return entry.number == errorNumber; });
  return found != kTexts.end() ? std::u16string(found->text) : std::u16string();
}

}  // namespace platform
