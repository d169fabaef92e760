// Mathematics and bits. Angles are in degrees. Doubles stay doubles, everything else is a float, except where told.
#include <bit>
#include <cmath>
#include <numbers>

#include "hostkit/script/library/library.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/operators.h"
#include "hostkit/script/machine/printing.h"

namespace hostkit::script {
namespace {

constexpr double kDegree = std::numbers::pi / 180;

Value like(const Value& model, double result) {
  return model.tag == Tag::doubleReal ? Value::ofDouble(result) : Value::ofFloat(static_cast<float>(result));
}

double squareRoot(double x) { return std::sqrt(x); }
double floorOf(double x) { return std::floor(x); }
double ceilOf(double x) { return std::ceil(x); }
double expOf(double x) { return std::exp(x); }
double logOf(double x) { return std::log(x); }
double log10Of(double x) { return std::log10(x); }
double sinOf(double x) { return std::sin(x * kDegree); }
double cosOf(double x) { return std::cos(x * kDegree); }
double tanOf(double x) { return std::tan(x * kDegree); }
double asinOf(double x) { return std::asin(x) / kDegree; }
double acosOf(double x) { return std::acos(x) / kDegree; }
double atanOf(double x) { return std::atan(x) / kDegree; }
double sinhOf(double x) { return std::sinh(x * kDegree); }
double coshOf(double x) { return std::cosh(x * kDegree); }
double tanhOf(double x) { return std::tanh(x * kDegree); }
double radians(double x) { return x * kDegree; }
double degrees(double x) { return x / kDegree; }

template <double (*Function)(double)>
Value ofOne(const Call& call) {
  return like(call[0], Function(toDouble(call.runtime, call[0])));
}

Value absolute(const Call& call) {
  const Value& v = call[0];
  if (v.isWhole() || v.tag == Tag::time || v.isNumber())
    return toDouble(call.runtime, v) < 0 ? negated(call.runtime, v) : v;
  toDouble(call.runtime, v);
  return v;
}

Value modulo(const Call& call) {
  const double b = toDouble(call.runtime, call[1]);
  return like(call[0].tag == Tag::doubleReal ? call[0] : call[1], std::fmod(toDouble(call.runtime, call[0]), b));
}
Value power(const Call& call) { return arithmetic(call.runtime, BinaryOperator::power, call[0], call[1]); }
Value atan2Of(const Call& call) {
  return like(call[0], std::atan2(toDouble(call.runtime, call[0]), toDouble(call.runtime, call[1])) / kDegree);
}

Value roundOff(const Call& call) {
  return Value::ofInteger(clampedInteger(std::round(toDouble(call.runtime, call[0]))));
}

// Both ends included, of the first argument's type.
Value random(const Call& call) {
  auto& generator = call.runtime.random;
  const Value &a = call[0], &b = call[1];
  if (a.isInteger()) {
    std::int32_t low = a.i, high = toInteger(call.runtime, b);
    if (low > high) std::swap(low, high);
    return Value::ofInteger(std::uniform_int_distribution<std::int32_t>(low, high)(generator));
  }
  const double part = std::uniform_real_distribution<double>(0, 1)(generator);
  if (a.isNumber())
    return like(a, toDouble(call.runtime, a) + part * (toDouble(call.runtime, b) - toDouble(call.runtime, a)));
  if (a.tag == Tag::time)
    return Value::ofTime(clampedInteger(a.i + part * (static_cast<double>(toTicks(call.runtime, b)) - a.i)));
  if (const auto* from = as<TupleObject>(a)) {
    const auto* to = toTuple(call.runtime, b, from->tuple, from->tuple);
    std::array<float, 12> v{};
    for (std::size_t i = 0; i < from->size(); ++i)
      v[i] = from->v[i] + std::uniform_real_distribution<float>(0, 1)(generator) * (to->v[i] - from->v[i]);
    return call.runtime.heap().make<TupleObject>(from->tuple, v);
  }
  throwUnableToConvert(printed(call.runtime, a), u"Number");
}

Value seed(const Call& call) {
  call.runtime.random.seed(static_cast<std::uint32_t>(toInteger(call.runtime, call[0])));
  return Value::ok();
}

// Bits

std::uint32_t word(const Call& call, std::size_t index) {
  return static_cast<std::uint32_t>(toInteger(call.runtime, call[index]));
}

Value bitAnd(const Call& call) { return wrapped(word(call, 0) & word(call, 1)); }
Value bitOr(const Call& call) { return wrapped(word(call, 0) | word(call, 1)); }
Value bitXor(const Call& call) { return wrapped(word(call, 0) ^ word(call, 1)); }
Value bitNot(const Call& call) { return wrapped(~word(call, 0)); }

// Negative counts shift right.
Value shift(const Call& call) {
  const std::int32_t count = toInteger(call.runtime, call[1]);
  if (count >= 32) return Value::ofInteger(0);
  if (count <= -32) return Value::ofInteger(0);
  return wrapped(count >= 0 ? word(call, 0) << count : word(call, 0) >> -count);
}

std::uint32_t maskOf(const Call& call) {
  const std::int32_t bit = toInteger(call.runtime, call[1]);
  if (bit < 1 || bit > 32)
    throwRuntimeError(u"bit number must be from 1 to 32, got: " + printed(call.runtime, call[1]));
  return 1U << (bit - 1);
}
Value getBit(const Call& call) { return Value::ofBoolean((word(call, 0) & maskOf(call)) != 0); }
Value setBit(const Call& call) {
  const std::uint32_t mask = maskOf(call);
  return wrapped(toBoolean(call.runtime, call[2]) ? word(call, 0) | mask : word(call, 0) & ~mask);
}
Value flipBit(const Call& call) { return wrapped(word(call, 0) ^ maskOf(call)); }

constexpr std::u16string_view kHexDigits = u"0123456789abcdef";

Value intAsChar(const Call& call) {
  return call.runtime.newString(std::u16string(1, static_cast<char16_t>(toInteger(call.runtime, call[0]))));
}
Value charAsInt(const Call& call) {
  const std::u16string_view text = toString(call.runtime, call[0]);
  if (text.empty()) throwRuntimeError(u"bit.charAsInt requires a character");
  return Value::ofInteger(text[0]);
}
Value intAsHex(const Call& call) {
  std::u16string text;
  for (std::uint32_t rest = word(call, 0); rest != 0 || text.empty(); rest >>= 4)
    text.insert(text.begin(), kHexDigits[rest & 15]);
  return call.runtime.newString(text);
}
Value hexAsInt(const Call& call) {
  const std::u16string_view text = toString(call.runtime, call[0]);
  std::uint32_t number = 0;
  for (const char16_t digit : text) {
    const std::size_t value =
        kHexDigits.find(digit >= u'A' && digit <= u'F' ? static_cast<char16_t>(digit + 32) : digit);
    if (value == std::u16string_view::npos || number > 0x0FFFFFFF)
      throwRuntimeError(u"bit.hexAsInt requires up to 8 hexadecimal digits, got: " + printed(call.runtime, call[0]));
    number = number << 4 | static_cast<std::uint32_t>(value);
  }
  return wrapped(number);
}
Value intAsFloat(const Call& call) { return Value::ofFloat(std::bit_cast<float>(word(call, 0))); }
Value floatAsInt(const Call& call) {
  return Value::ofInteger(std::bit_cast<std::int32_t>(toFloat(call.runtime, call[0])));
}

constexpr BuiltinEntry kEntries[] = {
    {u"abs", 1, 1, absolute},
    {u"mod", 2, 2, modulo},
    {u"pow", 2, 2, power},
    {u"floor", 1, 1, ofOne<floorOf>},
    {u"ceil", 1, 1, ofOne<ceilOf>},
    {u"sqrt", 1, 1, ofOne<squareRoot>},
    {u"exp", 1, 1, ofOne<expOf>},
    {u"log", 1, 1, ofOne<logOf>},
    {u"log10", 1, 1, ofOne<log10Of>},
    {u"sin", 1, 1, ofOne<sinOf>},
    {u"cos", 1, 1, ofOne<cosOf>},
    {u"tan", 1, 1, ofOne<tanOf>},
    {u"asin", 1, 1, ofOne<asinOf>},
    {u"acos", 1, 1, ofOne<acosOf>},
    {u"atan", 1, 1, ofOne<atanOf>},
    {u"sinh", 1, 1, ofOne<sinhOf>},
    {u"cosh", 1, 1, ofOne<coshOf>},
    {u"tanh", 1, 1, ofOne<tanhOf>},
    {u"degToRad", 1, 1, ofOne<radians>},
    {u"radToDeg", 1, 1, ofOne<degrees>},
    {u"atan2", 2, 2, atan2Of},
    {u"round", 1, 1, roundOff},
    {u"random", 2, 2, random},
    {u"seed", 1, 1, seed},
    {u"bit.and", 2, 2, bitAnd},
    {u"bit.or", 2, 2, bitOr},
    {u"bit.xor", 2, 2, bitXor},
    {u"bit.not", 1, 1, bitNot},
    {u"bit.shift", 2, 2, shift},
    {u"bit.get", 2, 2, getBit},
    {u"bit.set", 3, 3, setBit},
    {u"bit.flip", 2, 2, flipBit},
    {u"bit.intAsChar", 1, 1, intAsChar},
    {u"bit.charAsInt", 1, 1, charAsInt},
    {u"bit.intAsHex", 1, 1, intAsHex},
    {u"bit.hexAsInt", 1, 1, hexAsInt},
    {u"bit.intAsFloat", 1, 1, intAsFloat},
    {u"bit.floatAsInt", 1, 1, floatAsInt},
};

}  // namespace

std::span<const BuiltinEntry> mathBuiltins() { return kEntries; }

}  // namespace hostkit::script
