// Memory that ends: a page that may be touched, and behind it one that may not.
#pragma once

#include <cstdint>

namespace support {

class HalfReadable {
 public:
  HalfReadable();
  ~HalfReadable();
  HalfReadable(const HalfReadable&) = delete;
  HalfReadable& operator=(const HalfReadable&) = delete;

  // The first address that cannot be read.
  std::uintptr_t end() const { return reinterpret_cast<std::uintptr_t>(start_) + kPage; }

 private:
  static constexpr std::uintptr_t kPage = 4096;
  void* start_;
};

}  // namespace support
