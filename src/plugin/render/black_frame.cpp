#include "plugin/render/black_frame.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <stdexcept>
#include <string>

#include "plugin/daemon/requests/requests.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

struct PixelCount {
  std::uint64_t black = 0, total = 0;

  std::int32_t percent() const { return total == 0 ? 0 : static_cast<std::int32_t>(black * 100 / total); }
};

// Without branches on the pixel's values: what a picture shows must not decide how fast it is judged.
inline unsigned isBlack(const hostsdk::ColorFloat& pixel, float threshold, float opaque) {
  const unsigned dark = static_cast<unsigned>(pixel.r <= threshold) & static_cast<unsigned>(pixel.g <= threshold) &
                        static_cast<unsigned>(pixel.b <= threshold);
  const unsigned fullOrEmpty = static_cast<unsigned>(pixel.a <= threshold) | static_cast<unsigned>(pixel.a >= opaque);
  return dark & fullOrEmpty;
}

// The judging does not wait for the reading of the same pixel: the memory that a column touches is far apart, and the
// processor fetches more of it at a time the less stands between two reads.
constexpr int kBatch = 16;

unsigned countBlack(hostsdk::BitmapStorage& storage, int x, int firstY, int count, float threshold) {
  std::array<hostsdk::ColorFloat, kBatch> pixels{};
  for (int i = 0; i < count; ++i) storage.GetLinearPixels(x, firstY + i, 1, &pixels[static_cast<std::size_t>(i)]);
  const float opaque = 1.0F - threshold;
  return std::accumulate(pixels.begin(), pixels.begin() + count, 0U,
                         [&](unsigned black, const auto& pixel) { return black + isBlack(pixel, threshold, opaque); });
}

PixelCount countBlack(hostsdk::Bitmap& bitmap, float threshold) {
  hostsdk::BitmapStorage* storage = bitmap.Storage();
  const int width = bitmap.Width();
  const int height = bitmap.Height();
  if (!storage || width <= 0 || height <= 0) return {};

  std::uint64_t black = 0;
  for (int x = 0; x < width; ++x) {
    for (int y = 0; y < height; y += kBatch) {
      black += countBlack(*storage, x, y, std::min(kBatch, height - y), threshold);
    }
  }
  return {black, static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height)};
}

}  // namespace

void checkBlackFrame(const JobState& job, hostsdk::Bitmap& bitmap, win32::simple_socket& connection) {
  const std::int32_t minimum = job.settings.blackPixelPercentage;
  const float threshold = job.settings.blackPixelThreshold;
  sendStdoutLine(connection, u"  blackPixelPercentage = " + to_wstring(minimum) + u"%");
  sendStdoutLine(connection, u"  blackPixelThreshold = " + to_wstring(threshold));

  const PixelCount count = countBlack(bitmap, threshold);
  const std::int32_t percent = count.percent();
  sendStdoutLine(connection, to_wstring(count.black) + u" of " + to_wstring(count.total) +
                                 u" pixels are considered black (" + to_wstring(percent) + u"%)");
  if (percent < minimum) return;

  sendStdoutLine(connection, to_wstring(percent) + u"% of the output image is considered black, failing render...");
  throw std::runtime_error(to_string(percent) +
                           "% of the output image is black, which equals or exceeds the minimum of " +
                           to_string(minimum) + "%");
}

}  // namespace corvantis
