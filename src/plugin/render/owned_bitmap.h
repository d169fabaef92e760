// A bitmap of the host with one owner.
#pragma once

#include <memory>

#include "hostsdk/bitmap.h"

namespace corvantis {

struct BitmapRelease {
  void operator()(hostsdk::Bitmap* bitmap) const { bitmap->DeleteThis(); }
};
using OwnedBitmap = std::unique_ptr<hostsdk::Bitmap, BitmapRelease>;

// A new bitmap of the host's manager. Throws std::runtime_error
// "Failed to allocate Bitmap: TheManager->Create() return NULL" when there is none to be had.
OwnedBitmap createBitmap(const hostsdk::BitmapInfo& info);

}  // namespace corvantis
