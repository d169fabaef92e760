#include "plugin/util/text.h"

#include <utf8.h>

#include <iterator>
#include <stdexcept>

namespace corvantis {

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

std::u16string replace_all(std::u16string text, std::u16string_view search, std::u16string_view replacement) {
  if (search.empty()) return text;
  for (std::size_t at = text.find(search); at != std::u16string::npos; at = text.find(search, at)) {
    text.replace(at, search.size(), replacement);
    at += replacement.size();
  }
  return text;
}

}  // namespace corvantis
