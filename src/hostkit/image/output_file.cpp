#include "hostkit/image/output_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <set>
#include <stdexcept>

#include "platform/process/aside_name.h"

namespace hostkit::image {
namespace fs = std::filesystem;
namespace {

// What killed processes have left in a folder goes when this process first writes there.
void sweepOnce(const std::string& folder) {
  static std::mutex mutex;
  static std::set<std::string> swept;
  const std::lock_guard lock(mutex);
  if (swept.insert(folder).second) platform::sweepAside(folder);
}

std::string reason() { return std::strerror(errno); }

}  // namespace

OutputFile::OutputFile(const std::string& nativePath) : path_(nativePath), aside_(platform::asideName(nativePath)) {
  std::error_code ignored;
  if (fs::is_directory(path_, ignored)) throw std::runtime_error("Cannot write " + path_ + ": it is a folder");
  sweepOnce(fs::path(path_).parent_path().string());
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
