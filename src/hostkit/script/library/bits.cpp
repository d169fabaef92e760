#include <bit>

#include "hostkit/script/library/builtins.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/operators.h"
#include "hostkit/script/machine/printing.h"

namespace hostkit::script {
namespace {

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

std::span<const BuiltinEntry> bitBuiltins() { return kEntries; }

}  // namespace hostkit::script
