#include "hostkit/image/pixel_storage.h"

#include <algorithm>
#include <cstring>

namespace hostkit::image {
namespace {

constexpr float kIntegerScale = 65535.0F;

std::uint16_t toInteger(float value) {
  if (!(value > 0)) return 0;                                          // also NaN
  const float rounded = std::min(value, 1.0F) * kIntegerScale + 0.5F;  // from 0.5 to 65535.5: the cast rounds
  return static_cast<std::uint16_t>(rounded);
}

hostsdk::ColorFloat toFloat(const hostsdk::Color64& color) {
  return {static_cast<float>(color.r) / kIntegerScale, static_cast<float>(color.g) / kIntegerScale,
          static_cast<float>(color.b) / kIntegerScale, static_cast<float>(color.a) / kIntegerScale};
}

}  // namespace

PixelStorage::PixelStorage(int width, int height, int type) : width_(width), height_(height) {
  const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
  if (type == hostsdk::kBitmapRealPixFloat32)
    floats_ = channels_.emplace<std::vector<float>>(count).data();
  else
    channels_.emplace<std::vector<std::uint16_t>>(count);
}

bool PixelStorage::inside(int x, int y, int count) const {
  return x >= 0 && y >= 0 && y < height_ && count >= 0 && x <= width_ && count <= width_ - x;
}

bool PixelStorage::isPixel(int x, int y) const {
  // A negative number is a large one without its sign.
  return static_cast<unsigned>(x) < static_cast<unsigned>(width_) &&
         static_cast<unsigned>(y) < static_cast<unsigned>(height_);
}

std::size_t PixelStorage::offset(int x, int y) const {
  return (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)) * 4;
}

int PixelStorage::GetLinearPixels(int x, int y, int count, hostsdk::ColorFloat* out) {
  // What a reader of single pixels asks for; a copy of known size needs no call.
  if (count == 1 && floats_ != nullptr && isPixel(x, y)) {
    std::memcpy(static_cast<void*>(out), floats_ + offset(x, y), sizeof(hostsdk::ColorFloat));
    return 1;
  }
  if (!inside(x, y, count)) return 0;
  const std::size_t first = offset(x, y);
  if (floats_ != nullptr) {
    std::memcpy(static_cast<void*>(out), floats_ + first,
                static_cast<std::size_t>(count) * sizeof(hostsdk::ColorFloat));
    return 1;
  }
  const std::uint16_t* in = std::get<std::vector<std::uint16_t>>(channels_).data() + first;
  for (int i = 0; i < count; ++i, in += 4) out[i] = toFloat({in[0], in[1], in[2], in[3]});
  return 1;
}

int PixelStorage::PutLinearPixels(int x, int y, int count, const hostsdk::ColorFloat* pixels) {
  if (!inside(x, y, count)) return 0;
  const std::size_t first = offset(x, y);
  if (auto* floats = std::get_if<std::vector<float>>(&channels_)) {
    std::memcpy(floats->data() + first, pixels, static_cast<std::size_t>(count) * sizeof(hostsdk::ColorFloat));
    return 1;
  }
  std::uint16_t* out = std::get<std::vector<std::uint16_t>>(channels_).data() + first;
  for (int i = 0; i < count; ++i, out += 4) {
    out[0] = toInteger(pixels[i].r);
    out[1] = toInteger(pixels[i].g);
    out[2] = toInteger(pixels[i].b);
    out[3] = toInteger(pixels[i].a);
  }
  return 1;
}

int PixelStorage::CopyImage(hostsdk::Bitmap* from, int operation, hostsdk::Color64 fill,
                            const hostsdk::BitmapInfo& info) {
  if (!from || !from->Storage() || operation != hostsdk::kCopyImageUseCustom) return 0;
  const bool placed = (info.CustomFlags() & hostsdk::kCustomOffset) != 0;
  const bool sized = (info.CustomFlags() & hostsdk::kCustomSize) != 0;
  const int left = placed ? info.CustomX() : 0;
  const int top = placed ? info.CustomY() : 0;
  const int sourceWidth = sized ? std::min<int>(info.CustomWidth(), from->Width()) : from->Width();
  const int sourceHeight = sized ? std::min<int>(info.CustomHeight(), from->Height()) : from->Height();

  const int firstX = std::clamp(left, 0, width_);
  const int lastX = std::clamp(left + sourceWidth, firstX, width_);
  std::vector<hostsdk::ColorFloat> row(static_cast<std::size_t>(width_));
  for (int y = 0; y < height_; ++y) {
    std::fill(row.begin(), row.end(), toFloat(fill));
    const int sourceY = y - top;
    if (sourceY >= 0 && sourceY < sourceHeight && lastX > firstX)
      from->Storage()->GetLinearPixels(firstX - left, sourceY, lastX - firstX, row.data() + firstX);
    PutLinearPixels(0, y, width_, row.data());
  }
  return 1;
}

std::span<const float> PixelStorage::floats() const {
  const auto* floats = std::get_if<std::vector<float>>(&channels_);
  return floats ? std::span<const float>(*floats) : std::span<const float>();
}

std::vector<float> PixelStorage::copyAsFloats() const {
  if (isFloat()) return std::get<std::vector<float>>(channels_);
  const auto& integers = std::get<std::vector<std::uint16_t>>(channels_);
  std::vector<float> values(integers.size());
  std::transform(integers.begin(), integers.end(), values.begin(),
                 [](std::uint16_t value) { return static_cast<float>(value) / kIntegerScale; });
  return values;
}

}  // namespace hostkit::image
