// The pixels of a bitmap: RGBA, 16-bit integers or 32-bit floats a channel.
#pragma once

#include <cstdint>
#include <span>
#include <variant>
#include <vector>

#include "hostsdk/bitmap.h"

namespace hostkit::image {

class PixelStorage final : public hostsdk::BitmapStorage {
 public:
  // All zero. `type` is hostsdk::kBitmapTrueColor64 or kBitmapRealPixFloat32; sizes are at least 1.
  PixelStorage(int width, int height, int type);
  PixelStorage(const PixelStorage&) = delete;
  PixelStorage& operator=(const PixelStorage&) = delete;

  int width() const { return width_; }
  int height() const { return height_; }
  bool isFloat() const { return std::holds_alternative<std::vector<float>>(channels_); }

  int GetLinearPixels(int x, int y, int count, hostsdk::ColorFloat* out) override;
  // Integers are clamped to 0..1 and rounded; NaN becomes 0.
  int PutLinearPixels(int x, int y, int count, const hostsdk::ColorFloat* pixels) override;
  int CopyImage(hostsdk::Bitmap* from, int operation, hostsdk::Color64 fill, const hostsdk::BitmapInfo& info) override;

  // The float channels themselves, empty for integers: width * height * 4.
  std::span<const float> floats() const;
  // All pixels as floats, converted where they are integers.
  std::vector<float> copyAsFloats() const;

 private:
  bool inside(int x, int y, int count) const;
  bool isPixel(int x, int y) const;
  std::size_t offset(int x, int y) const;

  int width_, height_;
  std::variant<std::vector<std::uint16_t>, std::vector<float>> channels_;
  const float* floats_ = nullptr;  // those of channels_, for whoever reads pixel by pixel
};

}  // namespace hostkit::image
