// Text and numbers: wide text (UTF-16) inside the system, UTF-8 on the wire, 8-bit text in the ANSI code page in the
// log. Every function is free of shared state and independent of the process's locale.
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/code_page.h"

namespace corvantis {

inline constexpr const char* kToStringFallback = "<error:to_string>";
inline constexpr const char16_t* kToWstringFallback = u"<error:to_wstring>";

// The text up to its NUL in the code page; null gives an empty result. When the system reports an error the result is
// `fallback`; without one std::runtime_error "convert_wide_string_to_multibyte Error code: " + the error's number, or
// "convert_multibyte_to_wide_string Error code: " + number for the twin.
std::string convert_wide_string_to_multibyte(const char16_t* text, platform::CodePage page,
                                             const std::optional<std::string>& fallback = std::nullopt);
std::u16string convert_multibyte_to_wide_string(const char* text, platform::CodePage page,
                                                const std::optional<std::u16string>& fallback = std::nullopt);

// Between wide text and the ANSI code page, up to the first NUL; null gives an empty result. Never fail: a text that
// the system cannot convert becomes the fallback text above.
std::string to_string(const std::u16string& text);
std::string to_string(const char16_t* text);
std::u16string to_wstring(const std::string& text);
std::u16string to_wstring(const char* text);

// Wide text to UTF-8: the whole string, embedded NULs included, or the text up to its NUL (null: empty). An unpaired
// surrogate throws utf8::invalid_utf16, what() "Invalid UTF-16".
std::string to_utf8(const std::u16string& text);
std::string to_utf8(const char16_t* text);
// ANSI text to UTF-8 by way of to_wstring; null gives an empty result.
std::string to_utf8(const std::string& text);
std::string to_utf8(const char* text);

// Throws utf8::invalid_utf8 "Invalid UTF-8" (bad lead byte, bad continuation byte, overlong form),
// utf8::invalid_code_point "Invalid code point" (surrogate, above 10FFFF), utf8::not_enough_room "Not enough space"
// (cut off by the end).
std::u16string from_utf8(std::string_view bytes);

template <class T>
concept PlainInteger =
    std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> && !std::same_as<T, wchar_t> &&
    !std::same_as<T, char8_t> && !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

namespace detail {
std::string decimal(long long value);
std::string decimal(unsigned long long value);
std::u16string widen(const std::string& ascii);
}  // namespace detail

// Decimal digits, a minus sign for negatives.
template <PlainInteger T>
std::string to_string(T value) {
  if constexpr (std::signed_integral<T>) {
    return detail::decimal(static_cast<long long>(value));
  } else {
    return detail::decimal(static_cast<unsigned long long>(value));
  }
}
template <PlainInteger T>
std::u16string to_wstring(T value) {
  return detail::widen(to_string(value));
}

// Six significant digits, fixed or scientific, whichever is shorter: 1.5, 1e-07, 33.3333, inf, nan.
std::string to_string(float value);
std::u16string to_wstring(float value);

// u"1" or u"0". A template so that no pointer turns into a bool on its way here.
template <std::same_as<bool> T>
std::u16string to_wstring(T value) {
  return value ? u"1" : u"0";
}

// Numbers from the whole of a text. Anything else throws boost::bad_lexical_cast, what() "bad lexical cast: source type
// value could not be interpreted as target".
//
// An optional sign and decimal digits, within the range of the type; no blanks.
std::int32_t parse_int32(const std::u16string& text);
// A decimal number with optional sign, fraction and exponent, or inf, infinity, nan in any case; no blanks. Too large
// a value fails, too small a one gives the nearest float.
float parse_float(const std::u16string& text);
// 0 or 1 after any number of zeros and an optional "+", or a zero after "-".
bool parse_bool(const std::u16string& text);

// `text` with every occurrence of `search`, found from the start and not inside a replacement just made, replaced. An
// empty `search` occurs nowhere.
std::u16string replace_all(std::u16string text, std::u16string_view search, std::u16string_view replacement);

}  // namespace corvantis
