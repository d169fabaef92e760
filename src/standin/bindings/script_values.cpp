#include "standin/bindings/script_values.h"

#include <cmath>
#include <limits>
#include <optional>

#include "hostkit/services/text.h"
#include "hostsdk/script_value.h"

namespace standin::bindings {
namespace {

using hostkit::script::HostValue;

[[noreturn]] void refuse(const char16_t* what, const char16_t* type) {
  throw hostsdk::RuntimeError(std::u16string(what) + u" requires " + type);
}

std::optional<double> number(const HostValue& value) {
  if (const auto* i = std::get_if<std::int32_t>(&value)) return *i;
  if (const auto* i = std::get_if<std::int64_t>(&value)) return static_cast<double>(*i);
  if (const auto* f = std::get_if<float>(&value)) return *f;
  if (const auto* d = std::get_if<double>(&value)) return *d;
  return std::nullopt;
}

std::int32_t rounded(double value, const char16_t* what) {
  if (!(value >= std::numeric_limits<std::int32_t>::min() && value <= std::numeric_limits<std::int32_t>::max()))
    refuse(what, u"a 32-bit Integer");
  return static_cast<std::int32_t>(value);
}

}  // namespace

bool asBoolean(const HostValue& value, const char16_t* what) {
  if (const auto* b = std::get_if<bool>(&value)) return *b;
  refuse(what, u"BooleanClass");
}

std::int32_t asInteger(const HostValue& value, const char16_t* what) {
  const auto n = number(value);
  if (!n) refuse(what, u"Integer");
  return rounded(*n, what);
}

float asFloat(const HostValue& value, const char16_t* what) {
  const auto n = number(value);
  if (!n) refuse(what, u"Float");
  return static_cast<float>(*n);
}

scene::PlainValue asPlain(const HostValue& value, const char16_t* what) {
  if (const auto* flag = std::get_if<bool>(&value)) return *flag;
  if (const auto* whole = std::get_if<std::int32_t>(&value)) return *whole;
  if (number(value)) return asFloat(value, what);
  return hostkit::services::toUtf8(asText(value, what));
}

HostValue ofPlain(const scene::PlainValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return hostkit::services::toWide(*text);
  if (const auto* flag = std::get_if<bool>(&value)) return *flag;
  if (const auto* whole = std::get_if<std::int32_t>(&value)) return *whole;
  return std::get<float>(value);
}

hostkit::script::HostColor asColor(const HostValue& value, const char16_t* what) {
  if (const auto* color = std::get_if<hostkit::script::HostColor>(&value)) return *color;
  refuse(what, u"Color");
}

std::u16string lowerCase(std::u16string_view text) {
  std::u16string lower(text);
  for (char16_t& c : lower)
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + 32);
  return lower;
}

std::u16string asText(const HostValue& value, const char16_t* what) {
  if (const auto* text = std::get_if<std::u16string>(&value)) return *text;
  if (const auto* name = std::get_if<hostkit::script::HostName>(&value)) return name->text;
  refuse(what, u"String");
}

scene::Vec3 asPoint(const HostValue& value, const char16_t* what) {
  if (const auto* point = std::get_if<hostkit::script::HostPoint3>(&value)) return {point->x, point->y, point->z};
  refuse(what, u"Point3");
}

std::int32_t asTime(const HostValue& value, int ticksPerFrame, const char16_t* what) {
  if (const auto* time = std::get_if<hostkit::script::HostTime>(&value)) return time->ticks;
  const auto n = number(value);
  if (!n) refuse(what, u"Time");
  return rounded(std::round(*n * ticksPerFrame), what);
}

}  // namespace standin::bindings
