#include "hostsdk/bitmap.h"

#include <utility>

namespace hostsdk {

std::u16string BitmapInfo::SetName(const std::u16string& name) { return std::exchange(name_, name); }
std::uint16_t BitmapInfo::SetWidth(std::uint16_t width) { return std::exchange(width_, width); }
std::uint16_t BitmapInfo::SetHeight(std::uint16_t height) { return std::exchange(height_, height); }
float BitmapInfo::SetAspect(float pixelAspect) { return std::exchange(aspect_, pixelAspect); }
int BitmapInfo::SetType(int type) { return std::exchange(type_, type); }

BitmapStorage::~BitmapStorage() = default;
Bitmap::~Bitmap() = default;
BitmapManager::~BitmapManager() = default;

}  // namespace hostsdk
