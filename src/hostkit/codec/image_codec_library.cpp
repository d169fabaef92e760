#include "hostkit/codec/image_codec_library.h"

#include <boost/dll/runtime_symbol_info.hpp>
#include <boost/dll/shared_library.hpp>
#include <memory>
#include <stdexcept>
#include <utility>

namespace hostkit::image {

struct ImageCodecLibrary::Module {
  boost::dll::shared_library library;
  EncodeFunction encode = nullptr;
  DecodeFunction decode = nullptr;
};

ImageCodecLibrary::ImageCodecLibrary(std::string modulePath) : modulePath_(std::move(modulePath)) {}

void ImageCodecLibrary::start() {
  if (loading_.valid()) return;
  loading_ = std::async(std::launch::async, [path = modulePath_] {
    auto module = std::make_shared<Module>();
    module->library.load(path, boost::dll::load_mode::rtld_local);
    module->encode =
        module->library.get<bool(const EncodeRequest&, std::vector<unsigned char>&, std::string&)>(kEncodeEntry);
    module->decode = module->library.get<bool(const std::string&, DecodedImage&, std::string&)>(kDecodeEntry);
    return module;
  });
}

ImageCodecLibrary::~ImageCodecLibrary() = default;

const ImageCodecLibrary::Module& ImageCodecLibrary::module() {
  start();
  try {
    return *loading_.get();
  } catch (const std::exception& e) {
    throw std::runtime_error(std::string("The image module cannot be loaded: ") + e.what());
  }
}

std::vector<unsigned char> ImageCodecLibrary::encode(const EncodeRequest& request) {
  std::vector<unsigned char> file;
  std::string error;
  if (!module().encode(request, file, error)) throw std::runtime_error(error);
  return file;
}

DecodedImage ImageCodecLibrary::decode(const std::string& nativePath) {
  DecodedImage image;
  std::string error;
  if (!module().decode(nativePath, image, error)) throw std::runtime_error(error);
  return image;
}

std::string ImageCodecLibrary::defaultModulePath() {
  const auto folder = boost::dll::program_location().parent_path();
  return (folder / ("libimage_codec" + boost::dll::shared_library::suffix().string())).string();
}

}  // namespace hostkit::image
