#include "worker/host/host_record.h"

#include <filesystem>
#include <mutex>
#include <vector>

#include "platform/clock.h"

namespace worker {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kBetweenLooks = 10000;
constexpr std::uint64_t kMostOutput = std::uint64_t{16} << 20;

fs::path makeNext(const fs::path& hosts) {
  fs::create_directories(hosts);
  for (int number = 1;; ++number)
    if (fs::path folder = hosts / std::to_string(number); fs::create_directory(folder)) return folder;
}

}  // namespace

// Where things are kept; the helper's thread finds it.
struct HostRecord::Place {
  std::string hosts;
  mutable std::mutex mutex;
  std::string folder, problem;

  template <class Work>
  void use(const Work& work) {
    try {
      if (folder.empty()) {
        const std::string made = makeNext(hosts).string();
        const std::lock_guard lock(mutex);
        folder = made;
      }
      work(fs::path(folder));
    } catch (const std::exception& e) {
      const std::lock_guard lock(mutex);
      problem = e.what();
    }
  }
};

HostRecord::HostRecord(const std::string& hosts, const std::string& hostFolder)
    : place_(std::make_shared<Place>()),
      log_(hostFolder + "/corvantis.log"),
      output_(hostFolder + "/output.txt"),
      outputStream_(output_),
      lastLook_(platform::clock().tickCount()) {
  place_->hosts = hosts;
}

void HostRecord::addLine(const std::string& line) {
  if (outputBytes_ > kMostOutput) return;
  outputBytes_ += line.size() + 1;
  outputStream_ << line << (outputBytes_ > kMostOutput ? "\n... what follows is not kept\n" : "\n");
}

void HostRecord::look() {
  const std::uint32_t now = platform::clock().tickCount();
  if (now - lastLook_ < kBetweenLooks || !isKept()) return;
  lastLook_ = now;
  keep();
}

void HostRecord::keep() {
  if (place_->hosts.empty()) return;
  outputStream_.flush();
  errand_.run([place = place_, sources = std::vector<fs::path>{log_, output_}] {
    place->use([&](const fs::path& folder) {
      for (const fs::path& source : sources)
        if (fs::exists(source)) fs::copy_file(source, folder / source.filename(), fs::copy_options::overwrite_existing);
    });
  });
}

void HostRecord::keep(const std::string& name, const std::string& text) {
  if (place_->hosts.empty()) return;
  errand_.run([place = place_, name, text] {
    place->use([&](const fs::path& folder) {
      std::ofstream stream(folder / name);
      stream << text;
      if (!stream.flush()) throw std::runtime_error("Cannot write " + (folder / name).string());
    });
  });
}

std::string HostRecord::folder() const {
  const std::lock_guard lock(place_->mutex);
  return place_->folder;
}

std::string HostRecord::problem() const {
  const std::lock_guard lock(place_->mutex);
  return place_->problem;
}

}  // namespace worker
