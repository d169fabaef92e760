#include "platform/posix/native_text.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "platform/posix/utf8_reader.h"

namespace platform::posix {

std::u16string toWide(std::string_view utf8) {
  std::u16string wide;
  wide.reserve(utf8.size());
  for (std::size_t position = 0; position < utf8.size();) {
    const char32_t point = nextCodePoint(utf8, position);
    if (point < 0x10000) {
      wide.push_back(static_cast<char16_t>(point));
    } else {
      wide.push_back(static_cast<char16_t>(0xD800U + ((point - 0x10000U) >> 10U)));
      wide.push_back(static_cast<char16_t>(0xDC00U + ((point - 0x10000U) & 0x3FFU)));
    }
  }
  return wide;
}

std::string toNative(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  const auto put = [&](char32_t value) { bytes.push_back(static_cast<char>(static_cast<unsigned char>(value))); };
  for (std::size_t position = 0; position < text.size();) {
    const char32_t point = nextCodePoint(text, position);
    if (point < 0x80) {
      put(point);
      continue;
    }
    if (point < 0x800) {
      put(0xC0U | (point >> 6U));
    } else {
      if (point < 0x10000) {
        put(0xE0U | (point >> 12U));
      } else {
        put(0xF0U | (point >> 18U));
        put(0x80U | ((point >> 12U) & 0x3FU));
      }
      put(0x80U | ((point >> 6U) & 0x3FU));
    }
    put(0x80U | (point & 0x3FU));
  }
  return bytes;
}

std::string homeFolder() {
  std::string folder;
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') {
    folder = home;
  } else {
    std::array<char, 4096> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
      folder = entry.pw_dir;
    }
  }
  while (!folder.empty() && folder.back() == '/') folder.pop_back();
  return folder;
}

}  // namespace platform::posix
