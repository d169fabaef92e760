// The module around OpenImageIO. Nothing else includes its headers: their fmt is built without exceptions.
#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>

#include "hostkit/codec/image_codec.h"

namespace {

using hostkit::image::DecodedImage;
using hostkit::image::EncodeRequest;
using hostkit::image::ImageFormat;
namespace oiio = OIIO;

// What a file of each kind holds.
struct Format {
  const char* writer;          // the library's name of the format
  oiio::TypeDesc floatType;    // sample type for 32-bit float bitmaps
  oiio::TypeDesc integerType;  // sample type for 16-bit bitmaps
  bool alpha;                  // has room for an alpha channel
  bool unassociated;           // its alpha is not premultiplied
  bool zip;                    // is compressed so
};

const Format& formatOf(ImageFormat format) {
  static const Format exr{"openexr", oiio::TypeFloat, oiio::TypeHalf, true, false, true};
  static const Format tiff{"tiff", oiio::TypeFloat, oiio::TypeUInt16, true, false, true};
  static const Format png{"png", oiio::TypeUInt8, oiio::TypeUInt8, true, true, false};
  static const Format tga{"targa", oiio::TypeUInt8, oiio::TypeUInt8, true, true, false};
  static const Format jpeg{"jpeg", oiio::TypeUInt8, oiio::TypeUInt8, false, false, false};
  static const Format bmp{"bmp", oiio::TypeUInt8, oiio::TypeUInt8, false, false, false};
  switch (format) {
    case ImageFormat::exr:
      return exr;
    case ImageFormat::tiff:
      return tiff;
    case ImageFormat::png:
      return png;
    case ImageFormat::tga:
      return tga;
    case ImageFormat::jpeg:
      return jpeg;
    case ImageFormat::bmp:
      return bmp;
  }
  throw std::runtime_error("Unknown image format");
}

std::uint8_t toByte(float value, float inverseGamma) {
  if (!(value > 0)) return 0;  // also NaN
  const float encoded = inverseGamma == 1.0F ? value : std::pow(value, inverseGamma);
  const float rounded = std::min(encoded, 1.0F) * 255.0F + 0.5F;  // from 0.5 to 255.5: the cast rounds
  return static_cast<std::uint8_t>(rounded);
}

// Gamma-encoded bytes; colours are divided by alpha first where the format keeps them apart.
std::vector<std::uint8_t> bytesOf(const EncodeRequest& request, int channels, bool unassociated) {
  const std::size_t count = static_cast<std::size_t>(request.width) * static_cast<std::size_t>(request.height);
  const float inverseGamma = request.gamma > 0 ? 1.0F / request.gamma : 1.0F;
  std::vector<std::uint8_t> bytes(count * static_cast<std::size_t>(channels));
  std::uint8_t* out = bytes.data();
  for (std::size_t i = 0; i < count; ++i) {
    const float* in = request.pixels + i * 4;
    const float alpha = in[3];
    const float scale = unassociated && channels == 4 && alpha > 0 && alpha < 1 ? 1.0F / alpha : 1.0F;
    for (int c = 0; c < 3; ++c) *out++ = toByte(in[c] * scale, inverseGamma);
    if (channels == 4) *out++ = toByte(alpha, 1.0F);
  }
  return bytes;
}

std::vector<float> floatsOf(const EncodeRequest& request, int channels) {
  const std::size_t count = static_cast<std::size_t>(request.width) * static_cast<std::size_t>(request.height);
  std::vector<float> values(count * static_cast<std::size_t>(channels));
  for (std::size_t i = 0; i < count; ++i)
    std::copy_n(request.pixels + i * 4, channels, values.data() + i * static_cast<std::size_t>(channels));
  return values;
}

void encode(const EncodeRequest& request, std::vector<unsigned char>& file) {
  const auto known = hostkit::image::imageFormatOf(request.extension);
  if (!known) throw std::runtime_error("Unknown image file extension \"" + request.extension + "\"");
  const Format& format = formatOf(*known);
  const std::unique_ptr<oiio::ImageOutput> output = oiio::ImageOutput::create(format.writer);
  if (!output) throw std::runtime_error("No writer for " + request.extension + " files: " + oiio::geterror());
  if (!output->supports("ioproxy")) throw std::runtime_error(request.extension + " files cannot be written to memory");

  const int channels = format.alpha && request.hasAlpha ? 4 : 3;
  const oiio::TypeDesc type = request.floatSource ? format.floatType : format.integerType;
  oiio::ImageSpec spec(request.width, request.height, channels, type);
  spec.attribute("PixelAspectRatio", request.pixelAspect);
  spec.attribute("Software", request.product);
  if (format.unassociated) spec.attribute("oiio:UnassociatedAlpha", 1);
  if (type == oiio::TypeUInt8)
    spec.attribute("oiio:Gamma", request.gamma);
  else
    spec.attribute("oiio:ColorSpace", "Linear");
  if (format.zip) spec.attribute("compression", "zip");
  if (*known == ImageFormat::jpeg) spec.attribute("CompressionQuality", request.jpegQuality);

  oiio::Filesystem::IOVecOutput proxy(file);
  if (!output->set_ioproxy(&proxy) || !output->open("memory." + request.extension, spec))
    throw std::runtime_error("Cannot encode the image: " + output->geterror());
  const bool written =
      type == oiio::TypeUInt8
          ? output->write_image(oiio::TypeUInt8, bytesOf(request, channels, format.unassociated).data())
          : output->write_image(oiio::TypeFloat, floatsOf(request, channels).data());
  if (!written || !output->close()) throw std::runtime_error("Cannot encode the image: " + output->geterror());
}

void decode(const std::string& path, DecodedImage& image) {
  oiio::ImageSpec config;
  config.attribute("oiio:UnassociatedAlpha", 1);  // leave the file's alpha alone
  const auto input = oiio::ImageInput::open(path, &config);
  if (!input) throw std::runtime_error("Cannot read " + path + ": " + oiio::geterror());
  const oiio::ImageSpec& spec = input->spec();
  image.width = spec.width;
  image.height = spec.height;
  image.channels = spec.nchannels;
  image.sampleType = spec.format.c_str();
  std::vector<float> values(spec.image_pixels() * static_cast<std::size_t>(spec.nchannels));
  if (!input->read_image(0, 0, 0, spec.nchannels, oiio::TypeFloat, values.data()))
    throw std::runtime_error("Cannot read " + path + ": " + input->geterror());
  image.pixels.resize(spec.image_pixels() * 4);
  for (std::size_t i = 0; i < spec.image_pixels(); ++i)
    for (int c = 0; c < 4; ++c)
      image.pixels[i * 4 + static_cast<std::size_t>(c)] =
          c < spec.nchannels ? values[i * static_cast<std::size_t>(spec.nchannels) + static_cast<std::size_t>(c)]
                             : 1.0F;
}

// Runs `work`, turning every exception into `error`.
template <class Work>
bool guarded(std::string& error, Work&& work) {
  try {
    work();
    return true;
  } catch (const std::exception& e) {
    error = e.what();
  } catch (...) {
    error = "Unknown error in the image library";
  }
  return false;
}

}  // namespace

#define MODULE_ENTRY extern "C" __attribute__((visibility("default")))

MODULE_ENTRY bool corvantisEncodeImage(const EncodeRequest& request, std::vector<unsigned char>& file,
                                       std::string& error) {
  return guarded(error, [&] { encode(request, file); });
}

MODULE_ENTRY bool corvantisDecodeImage(const std::string& path, DecodedImage& image, std::string& error) {
  return guarded(error, [&] { decode(path, image); });
}
