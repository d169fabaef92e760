#include "platform/posix/code_page.h"

#include <array>

#include "platform/code_page.h"

namespace platform {
namespace posix {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kMaximumCodePoint = 0x10FFFF;

bool isSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }
bool isLeadSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isTrailSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// The code point at `position` of UTF-16 text, which moves past it; an unpaired surrogate is U+FFFD.
char32_t nextCodePoint(std::u16string_view text, std::size_t& position) {
  const char32_t unit = text[position++];
  if (!isSurrogate(unit)) return unit;
  if (!isLeadSurrogate(unit) || position == text.size() || !isTrailSurrogate(text[position])) return kReplacement;
  const char32_t trail = text[position++];
  return ((unit - 0xD800U) << 10U) + (trail - 0xDC00U) + 0x10000U;
}

// Code points of the bytes 80 to 9F hex; below and above them byte and code point are the same number. The five
// undefined bytes stand for the C1 control of their number, as Windows takes them.
constexpr std::array<char16_t, 32> kWindows1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

constexpr char16_t fromWindows1252(unsigned char byte) {
  return byte >= 0x80 && byte <= 0x9F ? kWindows1252High[byte - 0x80U] : static_cast<char16_t>(byte);
}

}  // namespace

char32_t nextCodePoint(std::string_view bytes, std::size_t& position) {
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

char toWindows1252(char32_t point) {
  if (point < 0x80 || (point >= 0xA0 && point <= 0xFF)) return static_cast<char>(static_cast<unsigned char>(point));
  for (unsigned i = 0; i < kWindows1252High.size(); ++i) {
    if (kWindows1252High[i] == point) return static_cast<char>(static_cast<unsigned char>(0x80U + i));
  }
  return '?';
}

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

}  // namespace posix

namespace {

thread_local std::uint32_t lastError = 0;

// Only a page that does not exist fails: UTF-8 takes U+FFFD and the ANSI page '?' for what cannot be converted.
bool isKnown(CodePage page) {
  if (page == CodePage::ansi || page == CodePage::utf8) return true;
  lastError = 87;  // ERROR_INVALID_PARAMETER
  return false;
}

}  // namespace

std::optional<std::string> wideToMultibyte(std::u16string_view text, CodePage page) {
  if (!isKnown(page)) return std::nullopt;
  if (page == CodePage::utf8) return posix::toNative(text);
  std::string bytes;
  bytes.reserve(text.size());
  // Unit by unit, as Windows does: a pair of surrogates gives two question marks.
  for (const char16_t unit : text) bytes.push_back(posix::toWindows1252(unit));
  return bytes;
}

std::optional<std::u16string> multibyteToWide(std::string_view text, CodePage page) {
  if (!isKnown(page)) return std::nullopt;
  if (page == CodePage::utf8) return posix::toWide(text);
  std::u16string wide;
  wide.reserve(text.size());
  for (const char byte : text) wide.push_back(posix::fromWindows1252(static_cast<unsigned char>(byte)));
  return wide;
}

std::uint32_t lastCodePageError() { return lastError; }

}  // namespace platform
