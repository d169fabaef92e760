#include "hostkit/script/library/formatting.h"

#include <fmt/printf.h>

#include <charconv>

#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

constexpr int kMaxWidth = 200;

// Flags, width and precision, checked: nothing of the script's reaches printf unread.
struct Form {
  std::string flags;
  int width = 0, precision = -1;
  char conversion = 'g';
};

Form readForm(const std::u16string& text) {
  const std::string s = narrow(text);
  Form form;
  std::size_t i = s.starts_with('%') ? 1 : 0;
  while (i < s.size() && std::string_view("-+ #0").find(s[i]) != std::string_view::npos) form.flags += s[i++];
  const auto number = [&](int& into) {
    const auto [end, error] = std::from_chars(s.data() + i, s.data() + s.size(), into);
    if (error == std::errc::result_out_of_range) into = kMaxWidth + 1;
    i = static_cast<std::size_t>(end - s.data());
  };
  number(form.width);
  if (i < s.size() && s[i] == '.') {
    ++i;
    form.precision = 0;
    number(form.precision);
  }
  while (i < s.size() && (s[i] == 'l' || s[i] == 'h')) ++i;
  const bool known = i + 1 == s.size() && std::string_view("diuxXoceEfgGs").find(s[i]) != std::string_view::npos;
  if (!known || form.width > kMaxWidth || form.precision > kMaxWidth) throwRuntimeError(u"Bad format: " + text);
  form.conversion = s[i];
  return form;
}

}  // namespace

std::u16string formatNumber(Runtime& runtime, const Value& value, const std::u16string& text) {
  const Form form = readForm(text);
  const std::string start = "%" + form.flags + "*" + (form.precision >= 0 ? ".*" : "");
  const auto print = [&](const std::string& format, const auto& argument) {
    return form.precision >= 0 ? fmt::sprintf(format, form.width, form.precision, argument)
                               : fmt::sprintf(format, form.width, argument);
  };
  switch (form.conversion) {
    case 's':
      return fromUtf8(print(start + 's', toUtf8(asText(runtime, value))));
    case 'c':
      return std::u16string(1, static_cast<char16_t>(toInteger(runtime, value)));
    case 'd':
    case 'i':
      return widen(print(start + 'd', toInteger64(runtime, value)));
    case 'u':
    case 'x':
    case 'X':
    case 'o': {
      const std::uint64_t bits = value.isInteger() ? static_cast<std::uint32_t>(value.i)
                                                   : static_cast<std::uint64_t>(toInteger64(runtime, value));
      return widen(print(start + form.conversion, bits));
    }
    default:
      return widen(print(start + form.conversion, toDouble(runtime, value)));
  }
}

}  // namespace hostkit::script
