// Windows paths as native ones: where a path lies, and why it cannot.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace platform::posix {

struct NativePath {
  std::string path;
  // The folder that stands for the drive or network share; empty for a path without either.
  std::string root;
  // Windows error number of what no path can be; `path` is then of no use.
  std::uint32_t errorNumber = 0;
  // Answer where `root` is not there.
  std::uint32_t missingRoot = 0;
};

NativePath locate(std::u16string_view windowsPath);

// The user's home folder without a trailing separator; empty when there is none.
std::string homeFolder();

}  // namespace platform::posix
