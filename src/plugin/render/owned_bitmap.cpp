#include "plugin/render/owned_bitmap.h"

#include <stdexcept>

namespace corvantis {

OwnedBitmap createBitmap(const hostsdk::BitmapInfo& info) {
  OwnedBitmap bitmap(hostsdk::TheManager()->Create(info));
  if (!bitmap) throw std::runtime_error("Failed to allocate Bitmap: TheManager->Create() return NULL");
  return bitmap;
}

}  // namespace corvantis
