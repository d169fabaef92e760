#include "plugin/util/text.h"

#include <utf8.h>

#include <array>
#include <boost/lexical_cast.hpp>
#include <charconv>
#include <iterator>
#include <locale>
#include <sstream>
#include <stdexcept>

namespace corvantis {
namespace {

template <class Value, class... Format>
std::string charsOf(Value value, Format... format) {
  std::array<char, 32> buffer;
  const std::to_chars_result end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format...);
  return {buffer.data(), end.ptr};
}

// A number's text is ASCII in every form that is accepted.
std::string asciiOrThrow(const std::u16string& text) {
  std::string ascii;
  ascii.reserve(text.size());
  for (const char16_t unit : text) {
    if (unit > 0x7F) throw boost::bad_lexical_cast();
    ascii.push_back(static_cast<char>(unit));
  }
  return ascii;
}

// Sign and digits only: what is left for the cast to judge no longer depends on the locale's digit grouping.
std::string signAndDigitsOrThrow(const std::u16string& text) {
  if (text.find_first_not_of(u"+-0123456789") != std::u16string::npos) throw boost::bad_lexical_cast();
  return asciiOrThrow(text);
}

bool isInfinityOrNanWord(const std::string& text) {
  const std::size_t first = text.find_first_not_of("+-");
  return first != std::string::npos && std::string_view("iInN").find(text[first]) != std::string_view::npos;
}

}  // namespace

std::string convert_wide_string_to_multibyte(const char16_t* text, platform::CodePage page,
                                             const std::optional<std::string>& fallback) {
  if (text == nullptr) return {};
  if (auto converted = platform::wideToMultibyte(text, page)) return *std::move(converted);
  if (fallback) return *fallback;
  throw std::runtime_error("convert_wide_string_to_multibyte Error code: " + to_string(platform::lastCodePageError()));
}

std::u16string convert_multibyte_to_wide_string(const char* text, platform::CodePage page,
                                                const std::optional<std::u16string>& fallback) {
  if (text == nullptr) return {};
  if (auto converted = platform::multibyteToWide(text, page)) return *std::move(converted);
  if (fallback) return *fallback;
  throw std::runtime_error("convert_multibyte_to_wide_string Error code: " + to_string(platform::lastCodePageError()));
}

std::string to_string(const std::u16string& text) { return to_string(text.c_str()); }

std::string to_string(const char16_t* text) {
  return convert_wide_string_to_multibyte(text, platform::CodePage::ansi, kToStringFallback);
}

std::u16string to_wstring(const std::string& text) { return to_wstring(text.c_str()); }

std::u16string to_wstring(const char* text) {
  return convert_multibyte_to_wide_string(text, platform::CodePage::ansi, kToWstringFallback);
}

std::string to_utf8(const std::u16string& text) {
  std::string bytes;
  bytes.reserve(text.size());
  utf8::utf16to8(text.begin(), text.end(), std::back_inserter(bytes));
  return bytes;
}

std::string to_utf8(const char16_t* text) { return text == nullptr ? std::string() : to_utf8(std::u16string(text)); }

std::string to_utf8(const std::string& text) { return to_utf8(to_wstring(text)); }

std::string to_utf8(const char* text) { return to_utf8(to_wstring(text)); }

std::u16string from_utf8(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size());
  utf8::utf8to16(bytes.begin(), bytes.end(), std::back_inserter(text));
  return text;
}

namespace detail {

std::string decimal(long long value) { return charsOf(value); }
std::string decimal(unsigned long long value) { return charsOf(value); }
std::u16string widen(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

}  // namespace detail

std::string to_string(float value) { return charsOf(value, std::chars_format::general, 6); }
std::u16string to_wstring(float value) { return detail::widen(to_string(value)); }

std::int32_t parse_int32(const std::u16string& text) {
  return boost::lexical_cast<std::int32_t>(signAndDigitsOrThrow(text));
}

bool parse_bool(const std::u16string& text) { return boost::lexical_cast<bool>(signAndDigitsOrThrow(text)); }

float parse_float(const std::u16string& text) {
  const std::string ascii = asciiOrThrow(text);
  if (isInfinityOrNanWord(ascii)) return boost::lexical_cast<float>(ascii);

  // The cast would read with the process's locale and its decimal point; the classic locale is wanted.
  std::istringstream stream(ascii);
  stream.imbue(std::locale::classic());
  float value = 0;
  stream >> std::noskipws >> value;
  const bool readWhole = !stream.fail() && stream.peek() == std::istringstream::traits_type::eof();
  if (!readWhole || std::string_view("+-eE").find(ascii.back()) != std::string_view::npos) {
    throw boost::bad_lexical_cast();
  }
  return value;
}

std::u16string replace_all(std::u16string text, std::u16string_view search, std::u16string_view replacement) {
  if (search.empty()) return text;
  for (std::size_t at = text.find(search); at != std::u16string::npos; at = text.find(search, at)) {
    text.replace(at, search.size(), replacement);
    at += replacement.size();
  }
  return text;
}

}  // namespace corvantis
