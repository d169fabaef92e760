#include "support/fake_files.h"

namespace support {

FakeFiles::FakeFiles() : system_(platform::files()) {}

void FakeFiles::fail(const std::string& operation, const std::string& ending, std::uint32_t errorNumber, int times) {
  failures_.push_back({operation, ending, errorNumber, times});
}

std::optional<std::uint32_t> FakeFiles::replacement(const char* operation, const std::string& arguments) {
  if (const std::optional<int> answer = log.note(operation, arguments)) return static_cast<std::uint32_t>(*answer);
  for (Failure& failure : failures_) {
    if (failure.operation != operation || !arguments.ends_with(failure.ending) || failure.times <= 0) continue;
    --failure.times;
    return failure.errorNumber;
  }
  return std::nullopt;
}

platform::FileAttributes FakeFiles::attributes(const std::u16string& path) {
  if (const auto answer = replacement("attributes", narrow(path))) return {*answer, false};
  return system_.attributes(path);
}

std::uint32_t FakeFiles::createDirectory(const std::u16string& path) {
  if (const auto answer = replacement("createDirectory", narrow(path))) return *answer;
  return system_.createDirectory(path);
}

std::uint32_t FakeFiles::copyFile(const std::u16string& source, const std::u16string& destination) {
  if (const auto answer = replacement("copyFile", narrow(source) + " -> " + narrow(destination))) return *answer;
  return system_.copyFile(source, destination);
}

std::uint32_t FakeFiles::deleteFile(const std::u16string& path) {
  if (const auto answer = replacement("deleteFile", narrow(path))) return *answer;
  return system_.deleteFile(path);
}

bool FakeFiles::isSameFile(const std::u16string& path, const std::u16string& file) {
  return system_.isSameFile(path, file);
}

}  // namespace support
