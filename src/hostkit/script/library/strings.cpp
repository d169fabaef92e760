// Texts, and printf forms for numbers. Positions count from 1.
#include <algorithm>
#include <charconv>
#include <cstdio>

#include <fmt/printf.h>

#include "hostkit/script/library/library.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/elements.h"
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

// `text` is what stands after the '%' of printf: flags, width, precision and one of d i u x X o c e E f g G s. Throws a
// script error for anything else.
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

std::u16string_view text(const Call& call, std::size_t index) { return toString(call.runtime, call[index]); }
Value position(std::size_t found) {
  return found == std::u16string::npos ? Value() : Value::ofInteger(static_cast<std::int32_t>(found) + 1);
}

Value findString(const Call& call) { return position(text(call, 0).find(text(call, 1))); }

// substring s from n: n negative takes everything to the end.
Value substring(const Call& call) {
  const std::u16string_view s = text(call, 0);
  const std::size_t from = toIndex(call.runtime, call[1]);
  const std::int32_t count = toInteger(call.runtime, call[2]);
  if (from >= s.size()) return call.runtime.newString(u"");
  return call.runtime.newString(s.substr(from, count < 0 ? std::u16string::npos : static_cast<std::size_t>(count)));
}

Value replace(const Call& call) {
  std::u16string s(text(call, 0));
  const std::size_t from = toIndex(call.runtime, call[1]);
  const std::int32_t count = toInteger(call.runtime, call[2]);
  if (from > s.size() || count < 0) throwRuntimeError(u"replace: range outside of the string");
  s.replace(from, static_cast<std::size_t>(count), text(call, 3));
  return call.runtime.newString(s);
}

Value substituteString(const Call& call) {
  const std::u16string_view s = text(call, 0), from = text(call, 1), to = text(call, 2);
  if (from.empty()) return call.runtime.newString(s);
  std::u16string out;
  std::size_t at = 0;
  for (std::size_t found; (found = s.find(from, at)) != std::u16string::npos; at = found + from.size()) {
    out.append(s, at, found - at).append(to);
    if (out.size() > kMaxStringLength) throwRuntimeError(u"String too long");
  }
  return call.runtime.newString(out.append(s, at));
}

Value filterString(const Call& call) {
  const std::u16string_view s = text(call, 0), delimiters = text(call, 1);
  const Value split = call.keyword(u"splitemptytokens");
  const bool keepsEmpty = !split.isUnsupplied() && toBoolean(call.runtime, split);
  const Root made(call.runtime.heap(), call.runtime.heap().make<ArrayObject>());
  std::size_t start = 0;
  for (std::size_t i = 0; i <= s.size(); ++i) {
    if (i < s.size() && delimiters.find(s[i]) == std::u16string::npos) continue;
    if (i > start || keepsEmpty)
      appendTo(call.runtime, *as<ArrayObject>(made.value), call.runtime.newString(s.substr(start, i - start)));
    start = i + 1;
  }
  return made.value;
}

Value matchPattern(const Call& call) {
  const Value pattern = call.keyword(u"pattern"), ignore = call.keyword(u"ignorecase");
  if (pattern.isUnsupplied()) throwRuntimeError(u"matchPattern requires pattern:");
  return Value::ofBoolean(matchesPattern(text(call, 0), toString(call.runtime, pattern),
                                         ignore.isUnsupplied() || toBoolean(call.runtime, ignore)));
}

std::u16string_view trimSet(const Call& call) { return call.count() > 1 ? text(call, 1) : u" \t\r\n"; }
Value trimLeft(const Call& call) {
  const std::u16string_view s = text(call, 0);
  const std::size_t from = s.find_first_not_of(trimSet(call));
  return call.runtime.newString(from == std::u16string::npos ? std::u16string_view() : s.substr(from));
}
Value trimRight(const Call& call) {
  const std::u16string_view s = text(call, 0);
  const std::size_t last = s.find_last_not_of(trimSet(call));
  return call.runtime.newString(last == std::u16string::npos ? std::u16string_view() : s.substr(0, last + 1));
}

Value toUpper(const Call& call) {
  std::u16string s(text(call, 0));
  std::transform(s.begin(), s.end(), s.begin(), upperCase);
  return call.runtime.newString(s);
}
Value toLower(const Call& call) { return call.runtime.newString(fold(text(call, 0))); }

Value stricmp(const Call& call) {
  const int result = compareFolded(text(call, 0), text(call, 1));
  return Value::ofInteger(result < 0 ? -1 : result > 0 ? 1 : 0);
}

Value isSpace(const Call& call) {
  const std::u16string_view s = text(call, 0);
  return Value::ofBoolean(!s.empty() && std::all_of(s.begin(), s.end(), isBlank));
}

Value formattedPrint(const Call& call) {
  const Value format = call.keyword(u"format");
  const std::u16string wanted = format.isUnsupplied() ? u"0.8g" : std::u16string(toString(call.runtime, format));
  return call.runtime.newString(formatNumber(call.runtime, call[0], wanted));
}

constexpr BuiltinEntry kEntries[] = {
    {u"findString", 2, 2, findString},
    {u"substring", 3, 3, substring},
    {u"replace", 4, 4, replace},
    {u"substituteString", 3, 3, substituteString},
    {u"filterString", 2, 2, filterString},
    {u"matchPattern", 1, 1, matchPattern},
    {u"trimLeft", 1, 2, trimLeft},
    {u"trimRight", 1, 2, trimRight},
    {u"toUpper", 1, 1, toUpper},
    {u"toLower", 1, 1, toLower},
    {u"stricmp", 2, 2, stricmp},
    {u"isSpace", 1, 1, isSpace},
    {u"formattedPrint", 1, 1, formattedPrint},
};

}  // namespace

std::span<const BuiltinEntry> stringBuiltins() { return kEntries; }

}  // namespace hostkit::script
