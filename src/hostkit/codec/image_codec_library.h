// The library of image codecs, a module that is loaded in the background.
#pragma once

#include <future>
#include <string>
#include <vector>

#include "hostkit/codec/image_codec.h"

namespace hostkit::image {

class ImageCodecLibrary {
 public:
  // `modulePath` is native. Nothing is loaded yet.
  explicit ImageCodecLibrary(std::string modulePath);
  // Waits for the loading to end.
  ~ImageCodecLibrary();
  ImageCodecLibrary(const ImageCodecLibrary&) = delete;
  ImageCodecLibrary& operator=(const ImageCodecLibrary&) = delete;

  // Begins to load the module on a thread of its own and returns at once. Calls after the first do nothing.
  void start();

  // Each starts the module if need be and waits until it is there. std::runtime_error: the module cannot be loaded, or
  // its own error text.
  std::vector<unsigned char> encode(const EncodeRequest& request);
  DecodedImage decode(const std::string& nativePath);

  // The module beside the running program.
  static std::string defaultModulePath();

 private:
  struct Module;
  const Module& module();

  std::string modulePath_;
  std::shared_future<std::shared_ptr<Module>> loading_;
};

}  // namespace hostkit::image
