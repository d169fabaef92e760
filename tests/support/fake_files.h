// The real file layer, written down and made to fail on demand; and one without any file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/files.h"
#include "support/call_log.h"

namespace support {

// Put in force with platform::FilesReplacement. The operations are "attributes", "createDirectory", "copyFile" and
// "deleteFile"; a line of the log is the operation, a blank and the path (copyFile: "source -> destination"), UTF-8.
// A hook's value is the Windows error number to answer with the files left alone, 0 included. For one thread.
class FakeFiles final : public platform::Files {
 public:
  FakeFiles();

  CallLog log;

  // From now on `operation` answers `errorNumber` for every path that ends in `ending` (copyFile: the destination),
  // `times` times at the most. Hooks of the log come first.
  void fail(const std::string& operation, const std::string& ending, std::uint32_t errorNumber, int times = 1 << 30);

  platform::FileAttributes attributes(const std::u16string& path) override;
  std::uint32_t createDirectory(const std::u16string& path) override;
  std::uint32_t copyFile(const std::u16string& source, const std::u16string& destination) override;
  std::uint32_t deleteFile(const std::u16string& path) override;
  // The real answer, without a line in the log.
  bool isSameFile(const std::u16string& path, const std::u16string& file) override;

 private:
  struct Failure {
    std::string operation;
    std::string ending;
    std::uint32_t errorNumber;
    int times;
  };
  // What stands in for the real answer to the call, if anything does.
  std::optional<std::uint32_t> replacement(const char* operation, const std::string& arguments);

  platform::Files& system_;
  std::vector<Failure> failures_;
};

// Nothing on the machine is touched: every file is missing, every folder can be made.
class NoFiles final : public platform::Files {
 public:
  platform::FileAttributes attributes(const std::u16string&) override {
    return {platform::error::kFileNotFound, false};
  }
  std::uint32_t createDirectory(const std::u16string&) override { return platform::error::kSuccess; }
  std::uint32_t copyFile(const std::u16string&, const std::u16string&) override {
    return platform::error::kFileNotFound;
  }
  std::uint32_t deleteFile(const std::u16string&) override { return platform::error::kFileNotFound; }
  bool isSameFile(const std::u16string&, const std::u16string&) override { return false; }
};

}  // namespace support
