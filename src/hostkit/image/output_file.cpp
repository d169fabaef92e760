#include "hostkit/image/output_file.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "platform/environment.h"

namespace hostkit::image {
namespace fs = std::filesystem;
namespace {

// A hidden name beside the destination that no other writer uses.
std::string asideName(const fs::path& path) {
  static std::atomic<unsigned> counter{0};
  return (path.parent_path() / ("." + path.filename().string() + "." + std::to_string(platform::currentThreadId()) +
                                "-" + std::to_string(counter++) + ".part"))
      .string();
}

std::string reason() { return std::strerror(errno); }

}  // namespace

OutputFile::OutputFile(const std::string& nativePath) : path_(nativePath), aside_(asideName(nativePath)) {
  std::error_code ignored;
  if (fs::is_directory(path_, ignored)) throw std::runtime_error("Cannot write " + path_ + ": it is a folder");
  errno = 0;
  stream_.open(aside_, std::ios::binary | std::ios::trunc);
  if (!stream_) throw std::runtime_error("Cannot write " + path_ + ": " + reason());
}

OutputFile::~OutputFile() {
  if (committed_) return;
  stream_.close();
  std::error_code ignored;
  fs::remove(aside_, ignored);
}

void OutputFile::write(const std::vector<unsigned char>& bytes) {
  errno = 0;
  stream_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  stream_.close();  // flushes; a full disk shows here at the latest
  if (!stream_) throw std::runtime_error("Cannot write " + path_ + ": " + reason());
}

void OutputFile::commit() {
  std::error_code error;
  fs::rename(aside_, path_, error);
  if (error) throw std::runtime_error("Cannot write " + path_ + ": " + error.message());
  committed_ = true;
}

}  // namespace hostkit::image
