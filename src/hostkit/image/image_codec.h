// Encoding and decoding image files in memory: the port between the bitmaps and the image library, which lives in a
// module of its own because it takes 0.4 s and 120 MB to load.
#pragma once

#include <string>
#include <vector>

namespace hostkit::image {

// Pixels to encode: RGBA, row-major from the top left, linear, colour premultiplied by alpha.
struct EncodeRequest {
  std::string extension;          // lower case, without the dot
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

// Whether files of this extension (lower case, no dot) can be written: exr, png, tif, tiff, jpg, jpeg, bmp, tga.
bool canEncode(const std::string& extension);

}  // namespace hostkit::image
