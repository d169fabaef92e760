// The Windows-1252 code page.
#pragma once

#include <array>

namespace platform::posix {

// Code points of the bytes 80 to 9F hex; below and above them byte and code point are the same number. The five
// undefined bytes stand for the C1 control of their number, as Windows takes them.
inline constexpr std::array<char16_t, 32> kWindows1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

constexpr char16_t fromWindows1252(unsigned char byte) {
  return byte >= 0x80 && byte <= 0x9F ? kWindows1252High[byte - 0x80U] : static_cast<char16_t>(byte);
}

// '?' for what the code page lacks.
constexpr char toWindows1252(char32_t point) {
  if (point < 0x80 || (point >= 0xA0 && point <= 0xFF)) return static_cast<char>(static_cast<unsigned char>(point));
  for (unsigned i = 0; i < kWindows1252High.size(); ++i) {
    if (kWindows1252High[i] == point) return static_cast<char>(static_cast<unsigned char>(0x80U + i));
  }
  return '?';
}

}  // namespace platform::posix
