#include "hostkit/bindings/script_values.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "hostkit/script/syntax/errors.h"
#include "hostkit/text/utf8.h"
#include "hostsdk/script_value.h"

namespace hostkit::bindings {
namespace {

using script::HostValue;

[[noreturn]] void refuse(const HostValue& value, const char16_t* what, const std::u16string& type) {
  throw script::WrongValue{what, type, value};
}

template <class Kind>
const Kind& require(const HostValue& value, const char16_t* what, const char16_t* type) {
  if (const auto* held = std::get_if<Kind>(&value)) return *held;
  refuse(value, what, type);
}

std::u16string digits(std::int64_t number) { return fromUtf8(std::to_string(number)); }

std::optional<double> number(const HostValue& value) {
  if (const auto* i = std::get_if<std::int32_t>(&value)) return *i;
  if (const auto* i = std::get_if<std::int64_t>(&value)) return static_cast<double>(*i);
  if (const auto* f = std::get_if<float>(&value)) return *f;
  if (const auto* d = std::get_if<double>(&value)) return *d;
  return std::nullopt;
}

std::int32_t rounded(const HostValue& given, double value, const char16_t* what) {
  if (!(value >= std::numeric_limits<std::int32_t>::min() && value <= std::numeric_limits<std::int32_t>::max()))
    refuse(given, what, u"a 32-bit Integer");
  return static_cast<std::int32_t>(value);
}

}  // namespace

bool asBoolean(const HostValue& value, const char16_t* what) { return require<bool>(value, what, u"BooleanClass"); }

std::int32_t asInteger(const HostValue& value, const char16_t* what) {
  const auto n = number(value);
  if (!n) refuse(value, what, u"Integer");
  return rounded(value, *n, what);
}

std::int32_t asInteger(const HostValue& value, const char16_t* what, std::int32_t lowest, std::int32_t highest) {
  const std::int32_t n = asInteger(value, what);
  if (n < lowest || n > highest) refuse(value, what, u"an Integer from " + digits(lowest) + u" to " + digits(highest));
  return n;
}

float asFloat(const HostValue& value, const char16_t* what) {
  const auto n = number(value);
  if (!n) refuse(value, what, u"Float");
  return static_cast<float>(*n);
}

PlainValue asPlain(const HostValue& value, const char16_t* what) {
  if (const auto* flag = std::get_if<bool>(&value)) return *flag;
  if (const auto* whole = std::get_if<std::int32_t>(&value)) return *whole;
  if (number(value)) return asFloat(value, what);
  return toUtf8(asText(value, what));
}

HostValue ofPlain(const PlainValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return fromUtf8(*text);
  if (const auto* flag = std::get_if<bool>(&value)) return *flag;
  if (const auto* whole = std::get_if<std::int32_t>(&value)) return *whole;
  return std::get<float>(value);
}

script::HostColor asColor(const HostValue& value, const char16_t* what) {
  return require<script::HostColor>(value, what, u"Color");
}

script::HostPoint3 asPoint(const HostValue& value, const char16_t* what) {
  return require<script::HostPoint3>(value, what, u"Point3");
}

script::HostQuat asQuat(const HostValue& value, const char16_t* what) {
  return require<script::HostQuat>(value, what, u"Quat");
}

script::HostInterval asInterval(const HostValue& value, const char16_t* what) {
  return require<script::HostInterval>(value, what, u"Interval");
}

std::u16string asText(const HostValue& value, const char16_t* what) {
  if (const auto* name = std::get_if<script::HostName>(&value)) return name->text;
  return require<std::u16string>(value, what, u"String");
}

std::int32_t asTime(const HostValue& value, int ticksPerFrame, const char16_t* what) {
  if (const auto* time = std::get_if<script::HostTime>(&value)) return time->ticks;
  const auto n = number(value);
  if (!n) refuse(value, what, u"Time");
  return rounded(value, std::round(*n * ticksPerFrame), what);
}

bool isNamed(std::u16string_view shown, std::u16string_view lowerCase) {
  return std::equal(shown.begin(), shown.end(), lowerCase.begin(), lowerCase.end(), [](char16_t c, char16_t lower) {
    return (c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c) == lower;
  });
}

void refuseCount(const char16_t* function, int wanted, std::size_t got) {
  script::throwArgumentCount(function, static_cast<std::size_t>(wanted), got);
}

void refuseIndex(const char16_t* what, std::int32_t index) {
  throw hostsdk::RuntimeError(std::u16string(what) + u" is out of range: " + digits(index));
}

}  // namespace hostkit::bindings
