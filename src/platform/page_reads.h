// Reading memory that may end at any page.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace platform {

// Copies `count` bytes from `address`, each page's share by one call of readWithinPage(address, out, count), which
// answers whether it could; ends at the first that it could not. Returns how many bytes were copied.
template <class ReadWithinPage>
std::size_t readByPages(std::uintptr_t address, void* out, std::size_t count, const ReadWithinPage& readWithinPage) {
  constexpr std::uintptr_t kPage = 4096;
  auto* const bytes = static_cast<char*>(out);
  std::size_t copied = 0;
  while (copied < count) {
    const std::uintptr_t from = address + copied;
    const std::size_t part = std::min<std::size_t>(count - copied, kPage - from % kPage);
    if (!readWithinPage(from, bytes + copied, part)) break;
    copied += part;
  }
  return copied;
}

}  // namespace platform
