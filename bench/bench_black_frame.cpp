// What the black-frame check costs over a plain pass: the same pixels in the same order (column by column, as the check
// has to ask the host for them), judged straight from memory.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

#include "bench/report.h"
#include "hostkit/codec/image_codec_library.h"
#include "hostkit/image/bitmap_manager.h"
#include "hostkit/image/pixel_storage.h"
#include "hostkit/services/gamma_manager.h"
#include "hostsdk/bitmap.h"
#include "plugin/job/job_state.h"
#include "plugin/render/black_frame.h"
#include "plugin/transport/simple_socket.h"
#include "plugin/util/log_file.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr float kThreshold = 0.1F;
constexpr int kRounds = 15;

// A host's bitmap with floating-point pixels, every one dark and opaque, so that no test of a pixel ends early.
class DarkImage {
 public:
  DarkImage(std::uint16_t width, std::uint16_t height) {
    hostsdk::BitmapInfo info;
    info.SetWidth(width);
    info.SetHeight(height);
    info.SetType(hostsdk::kBitmapRealPixFloat32);
    bitmap_ = manager_.Create(info);
    const hostsdk::ColorFloat dark{0.05F, 0.05F, 0.05F, 1.0F};
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) bitmap_->Storage()->PutLinearPixels(x, y, 1, &dark);
    }
  }
  ~DarkImage() { bitmap_->DeleteThis(); }
  DarkImage(const DarkImage&) = delete;
  DarkImage& operator=(const DarkImage&) = delete;

  hostsdk::Bitmap& bitmap() { return *bitmap_; }
  const float* channels() { return static_cast<hostkit::image::PixelStorage*>(bitmap_->Storage())->floats().data(); }

 private:
  hostkit::image::ImageCodecLibrary noFiles_{""};
  hostkit::services::GammaManager gamma_;
  hostkit::image::ImageBitmapManager manager_{noFiles_, gamma_, "test", [](const std::string&) {}};
  hostsdk::Bitmap* bitmap_ = nullptr;
};

std::uint64_t countInMemory(const float* channels, std::size_t width, std::size_t height) {
  std::uint64_t black = 0;
  for (std::size_t x = 0; x < width; ++x) {
    for (std::size_t y = 0; y < height; ++y) {
      const float* pixel = channels + (y * width + x) * 4;
      const bool dark = pixel[0] <= kThreshold && pixel[1] <= kThreshold && pixel[2] <= kThreshold;
      black += dark && (pixel[3] <= kThreshold || pixel[3] >= 1.0F - kThreshold) ? 1 : 0;
    }
  }
  return black;
}

template <class Work>
double milliseconds(Work&& work) {
  const Clock::time_point start = Clock::now();
  work();
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void measure(const std::string& name, std::uint16_t width, std::uint16_t height) {
  DarkImage image(width, height);
  corvantis::JobState job;
  corvantis::log_file.close();
  job.settings.blackPixelThreshold = kThreshold;
  job.settings.blackPixelPercentage = 101;  // never reached: the check runs to its end and passes
  corvantis::win32::simple_socket nobody;

  double ours = 1e9;
  double peer = 1e9;
  volatile std::uint64_t black = 0;
  for (int round = 0; round < kRounds; ++round) {
    ours = std::min(ours, milliseconds([&] { corvantis::checkBlackFrame(job, image.bitmap(), nobody); }));
    peer = std::min(peer, milliseconds([&] { black = countInMemory(image.channels(), width, height); }));
  }
  bench::reportAtMost({name, ours, peer, "ms"}, 3.0);
}

}  // namespace

int main() {
  measure("black-frame check, 640 x 480", 640, 480);
  measure("black-frame check, 1920 x 1080", 1920, 1080);
  measure("black-frame check, 3840 x 2160", 3840, 2160);
}
