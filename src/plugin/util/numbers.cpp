// Numbers to text and back, as text.h declares them.
#include <array>
#include <boost/lexical_cast.hpp>
#include <charconv>
#include <locale>
#include <sstream>
#include <string>

#include "plugin/util/text.h"

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

}  // namespace corvantis
