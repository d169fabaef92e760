// The host's bitmaps: storage of their own, files through the image codecs.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "hostkit/codec/image_codec_library.h"
#include "hostkit/image/pixel_storage.h"
#include "hostkit/services/gamma_manager.h"
#include "hostsdk/bitmap.h"

namespace hostkit::image {

// What OpenOutput and Write answer. The text of a failure goes to the host's log.
enum class OutputResult : std::uint16_t {
  success = 0,
  noName = 1,         // the description names no file
  unknownFormat = 2,  // no writer for the extension
  cannotOpen = 3,     // the folder is missing, not writable, or the name is a folder
  notOpen = 4,        // Write without OpenOutput, or for another file
  cannotEncode = 5,   // the image library refused
  cannotWrite = 6,    // the disk is full or failed
  cannotRename = 7,   // the finished file could not take its final name
};

// The largest bitmap, in pixels: 16384 x 16384. Its float storage takes 4 GiB; a system that lends memory freely would
// grant more and end the host when the pixels are touched.
inline constexpr std::uint64_t kLargestBitmap = std::uint64_t{1} << 28;

class ImageBitmapManager : public hostsdk::BitmapManager {
 public:
  // `codecs` and `gamma` are borrowed and outlive the manager and its bitmaps. `product` is what the files say made
  // them; `log` receives one line a failure.
  ImageBitmapManager(ImageCodecLibrary& codecs, const services::GammaManager& gamma, std::string product,
                     std::function<void(const std::string&)> log);

  // Null for a size of 0 or above `kLargestBitmap`, an unknown pixel type, or when memory runs out.
  hostsdk::Bitmap* Create(const hostsdk::BitmapInfo& info) override;

  // Bitmaps made and not yet released.
  int liveBitmaps() const { return live_; }

 private:
  friend class ImageBitmap;
  ImageCodecLibrary& codecs_;
  const services::GammaManager& gamma_;
  std::string product_;
  std::function<void(const std::string&)> log_;
  int live_ = 0;
};

}  // namespace hostkit::image
