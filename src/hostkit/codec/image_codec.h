// Encoding and decoding image files in memory: the port between the bitmaps and the image library, which lives in a
// module of its own because it takes 0.4 s and 120 MB to load.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hostkit::image {

enum class ImageFormat { exr, tiff, png, tga, jpeg, bmp };

// The extensions, in lower case and without the dot, of files that can be written.
struct ImageExtension {
  std::string_view extension;
  ImageFormat format;
};
inline constexpr std::array kImageExtensions{
    ImageExtension{"exr", ImageFormat::exr},   ImageExtension{"tif", ImageFormat::tiff},
    ImageExtension{"tiff", ImageFormat::tiff}, ImageExtension{"png", ImageFormat::png},
    ImageExtension{"tga", ImageFormat::tga},   ImageExtension{"jpg", ImageFormat::jpeg},
    ImageExtension{"jpeg", ImageFormat::jpeg}, ImageExtension{"bmp", ImageFormat::bmp}};

// nullopt: no format has this extension, and a file of it cannot be written.
constexpr std::optional<ImageFormat> imageFormatOf(std::string_view extension) {
  for (const ImageExtension& known : kImageExtensions)
    if (known.extension == extension) return known.format;
  return std::nullopt;
}

// Pixels to encode: RGBA, row-major from the top left, linear, colour premultiplied by alpha.
struct EncodeRequest {
  std::string extension;          // one of kImageExtensions
  std::string product;            // what the file says made it
  int width = 0, height = 0;      // pixels
  const float* pixels = nullptr;  // width * height * 4
  bool floatSource = true;        // false: the bitmap holds 16-bit integers, so a file need not hold more
  bool hasAlpha = true;           // false: the alpha channel is left out
  float pixelAspect = 1.0F;
  float gamma = 1.0F;    // 8-bit formats hold value ^ (1 / gamma)
  int jpegQuality = 92;  // 1..100
};

// An image read back: RGBA as the file holds it, neither gamma nor alpha undone.
struct DecodedImage {
  int width = 0, height = 0;
  int channels = 0;           // of the file
  std::string sampleType;     // of the file: "uint8", "uint16", "half", "float"
  std::vector<float> pixels;  // width * height * 4
};

// The module's two entry points. Each returns false and sets `error` on failure; neither throws.
using EncodeFunction = bool (*)(const EncodeRequest& request, std::vector<unsigned char>& file, std::string& error);
using DecodeFunction = bool (*)(const std::string& nativePath, DecodedImage& image, std::string& error);
inline constexpr const char* kEncodeEntry = "corvantisEncodeImage";
inline constexpr const char* kDecodeEntry = "corvantisDecodeImage";
}  // namespace hostkit::image
