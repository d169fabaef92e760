// UTF-8 and UTF-16 code point by code point, without allocation: usable where memory may not be asked for.
#pragma once

#include <cstddef>
#include <string_view>

namespace platform::posix {

inline constexpr char32_t kReplacement = 0xFFFD;
inline constexpr char32_t kMaximumCodePoint = 0x10FFFF;

inline bool isSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }
inline bool isLeadSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
inline bool isTrailSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// The code point at `position`, which moves past it. A byte that begins no valid sequence (overlong forms, surrogates
// and what lies above U+10FFFF included) is U+FFFD by itself.
inline char32_t nextCodePoint(std::string_view bytes, std::size_t& position) {
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char lead = at(position);
  std::size_t length = 1;
  char32_t point = lead;
  char32_t smallest = 0;
  if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4, point = lead & 0x07U, smallest = 0x10000;
  } else if (lead >= 0xE0 && lead < 0xF0) {
    length = 3, point = lead & 0x0FU, smallest = 0x800;
  } else if (lead >= 0xC2 && lead < 0xE0) {
    length = 2, point = lead & 0x1FU, smallest = 0x80;
  } else if (lead >= 0x80) {
    ++position;
    return kReplacement;
  }
  bool valid = position + length <= bytes.size();
  for (std::size_t i = 1; valid && i < length; ++i) {
    valid = (at(position + i) & 0xC0U) == 0x80U;
    point = (point << 6U) | (at(position + i) & 0x3FU);
  }
  if (!valid || point < smallest || point > kMaximumCodePoint || isSurrogate(point)) {
    ++position;
    return kReplacement;
  }
  position += length;
  return point;
}

// The code point at `position` of UTF-16 text, which moves past it; an unpaired surrogate is U+FFFD.
inline char32_t nextCodePoint(std::u16string_view text, std::size_t& position) {
  const char32_t unit = text[position++];
  if (!isSurrogate(unit)) return unit;
  if (!isLeadSurrogate(unit) || position == text.size() || !isTrailSurrogate(text[position])) return kReplacement;
  const char32_t trail = text[position++];
  return ((unit - 0xD800U) << 10U) + (trail - 0xDC00U) + 0x10000U;
}

}  // namespace platform::posix
