// Numbers, texts and collections. Points, matrices and their like: tuples.cpp.
#include "hostkit/script/machine/operators.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "hostkit/script/machine/classes.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/elements.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/tuples.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

std::u16string_view symbolOf(BinaryOperator op) {
  static constexpr std::array<std::u16string_view, 11> kSymbols{u"+",  u"-", u"*", u"/",  u"^", u"==",
                                                                u"!=", u"<", u">", u"<=", u">="};
  return kSymbols[static_cast<std::size_t>(op)];
}

[[noreturn]] void throwNoOperator(Runtime& runtime, BinaryOperator op, const Value& operand) {
  throw ScriptError(u"-- No \"\"" + std::u16string(symbolOf(op)) + u"\"\" function for " + printed(runtime, operand));
}

// The wider representation of two numbers.
Tag wider(Tag a, Tag b) {
  const auto rank = [](Tag tag) {
    return tag == Tag::integer ? 0 : tag == Tag::integerPtr ? 1 : tag == Tag::integer64 ? 2 : tag == Tag::real ? 3 : 4;
  };
  return rank(a) >= rank(b) ? a : b;
}

template <class T>
T floating(BinaryOperator op, T a, T b) {
  switch (op) {
    case BinaryOperator::add:
      return a + b;
    case BinaryOperator::subtract:
      return a - b;
    case BinaryOperator::multiply:
      return a * b;
    case BinaryOperator::divide:
      return a / b;
    default:
      return std::pow(a, b);
  }
}

// Wraps at 64 bits; the caller cuts to 32.
std::int64_t whole(BinaryOperator op, std::int64_t a, std::int64_t b) {
  const auto ua = static_cast<std::uint64_t>(a), ub = static_cast<std::uint64_t>(b);
  switch (op) {
    case BinaryOperator::add:
      return static_cast<std::int64_t>(ua + ub);
    case BinaryOperator::subtract:
      return static_cast<std::int64_t>(ua - ub);
    case BinaryOperator::multiply:
      return static_cast<std::int64_t>(ua * ub);
    case BinaryOperator::divide:
      if (b == 0) throwRuntimeError(u"Integer division by zero");
      return b == -1 ? static_cast<std::int64_t>(0 - ua) : a / b;
    default: {
      const double power = std::round(std::pow(static_cast<double>(a), static_cast<double>(b)));
      constexpr double kLimit = 9.2e18;
      return std::isfinite(power) ? static_cast<std::int64_t>(std::clamp(power, -kLimit, kLimit)) : 0;
    }
  }
}

Value numbers(Runtime& runtime, BinaryOperator op, const Value& left, const Value& right) {
  switch (const Tag tag = wider(left.tag, right.tag)) {
    case Tag::integer: {
      const std::int64_t result = whole(op, left.i, right.i);
      return op == BinaryOperator::power ? Value::ofInteger(clampedInteger(static_cast<double>(result)))
                                         : wrapped(static_cast<std::uint32_t>(result));
    }
    case Tag::real:
      return Value::ofFloat(floating(op, toFloat(runtime, left), toFloat(runtime, right)));
    case Tag::doubleReal:
      return Value::ofDouble(floating(op, toDouble(runtime, left), toDouble(runtime, right)));
    default: {
      const std::int64_t result = whole(op, toInteger64(runtime, left), toInteger64(runtime, right));
      return tag == Tag::integer64 ? Value::ofInteger64(result) : Value::ofIntegerPtr(result);
    }
  }
}

// A number among times counts frames, except that times are multiplied and divided by plain numbers.
Value times(Runtime& runtime, BinaryOperator op, const Value& left, const Value& right) {
  const auto ticks = [](double t) { return Value::ofTime(clampedInteger(std::round(t))); };
  const double a = toTicks(runtime, left), b = toTicks(runtime, right);
  switch (op) {
    case BinaryOperator::add:
      return ticks(a + b);
    case BinaryOperator::subtract:
      return ticks(a - b);
    case BinaryOperator::multiply:
      if (left.tag != Tag::time) return ticks(toDouble(runtime, left) * b);
      return ticks(right.tag == Tag::time ? a * framesOf(right.i, runtime.host()) : a * toDouble(runtime, right));
    case BinaryOperator::divide:
      if (right.tag == Tag::time) {
        if (b == 0) throwRuntimeError(u"Division by a time of zero");
        return Value::ofFloat(static_cast<float>(a / b));
      }
      if (toDouble(runtime, right) == 0) throwRuntimeError(u"Division of a time by zero");
      return ticks(a / toDouble(runtime, right));
    default:
      throwNoOperator(runtime, op, left);
  }
}

Value texts(Runtime& runtime, BinaryOperator op, const StringObject& left, const Value& right) {
  if (op != BinaryOperator::add) throwNoOperator(runtime, op, Value(const_cast<StringObject*>(&left)));
  return runtime.joined(left, toString(runtime, right));
}

Value arrays(Runtime& runtime, BinaryOperator op, const Value& left, const Value& right) {
  if (op != BinaryOperator::add) throwNoOperator(runtime, op, left);
  if (!isCollection(right)) throwUnableToConvert(printed(runtime, right), u"Array");
  const Root more(runtime.heap(), elementsOf(runtime, right));
  const Root made(runtime.heap(), runtime.heap().make<ArrayObject>(as<ArrayObject>(left)->items));
  for (const Value& item : as<ArrayObject>(more.value)->items) appendTo(runtime, *as<ArrayObject>(made.value), item);
  return made.value;
}

Value bitArrays(Runtime& runtime, BinaryOperator op, const Value& left, const BitArrayObject& right) {
  auto* made = runtime.heap().make<BitArrayObject>();
  const auto& a = as<BitArrayObject>(left)->bits;
  const auto& b = right.bits;
  made->bits.resize(std::max(a.size(), b.size()));
  for (std::size_t i = 0; i < made->bits.size(); ++i) {
    const bool inA = i < a.size() && a[i], inB = i < b.size() && b[i];
    made->bits[i] = op == BinaryOperator::add ? inA || inB : op == BinaryOperator::multiply ? inA && inB : inA && !inB;
  }
  return made;
}

}  // namespace

Value arithmetic(Runtime& runtime, BinaryOperator op, const Value& left, const Value& right) {
  if (left.isNumber() && right.isNumber()) return numbers(runtime, op, left, right);
  const bool timed = left.tag == Tag::time || right.tag == Tag::time;
  if (timed && (left.isNumber() || left.tag == Tag::time) && (right.isNumber() || right.tag == Tag::time))
    return times(runtime, op, left, right);
  if (const auto* text = as<StringObject>(left)) return texts(runtime, op, *text, right);
  if (as<ArrayObject>(left)) return arrays(runtime, op, left, right);
  if (as<BitArrayObject>(left) && as<BitArrayObject>(right) && op <= BinaryOperator::multiply)
    return bitArrays(runtime, op, left, *as<BitArrayObject>(right));
  if (as<TupleObject>(left) || as<TupleObject>(right))
    if (const auto result = tupleArithmetic(runtime, op, left, right)) return *result;
  if (left.isNumber() || left.tag == Tag::time)
    throwUnableToConvert(printed(runtime, right), nativeClassOf(runtime, left)->title);
  throwNoOperator(runtime, op, left);
}

Value negated(Runtime& runtime, const Value& operand) {
  switch (operand.tag) {
    case Tag::integer:
      return wrapped(0U - static_cast<std::uint32_t>(operand.i));
    case Tag::time:
      return Value::ofTime(wrapped(0U - static_cast<std::uint32_t>(operand.i)).i);
    case Tag::real:
      return Value::ofFloat(-operand.f);
    case Tag::doubleReal:
      return Value::ofDouble(-operand.d);
    case Tag::integer64:
      return Value::ofInteger64(static_cast<std::int64_t>(0 - static_cast<std::uint64_t>(operand.l)));
    case Tag::integerPtr:
      return Value::ofIntegerPtr(static_cast<std::int64_t>(0 - static_cast<std::uint64_t>(operand.l)));
    default:
      break;
  }
  if (const auto* bits = as<BitArrayObject>(operand)) {
    auto* made = runtime.heap().make<BitArrayObject>();
    made->bits = bits->bits;
    made->bits.flip();
    return made;
  }
  if (as<TupleObject>(operand))
    if (const auto result = tupleArithmetic(runtime, BinaryOperator::multiply, operand, Value::ofFloat(-1)))
      return *result;
  throwNoOperator(runtime, BinaryOperator::subtract, operand);
}

bool equal(Runtime& runtime, const Value& left, const Value& right) {
  if (left.tag == Tag::object && right.tag == Tag::object) {
    if (left.o == right.o) return true;
    if (left.o->kind != right.o->kind) return false;
    switch (left.o->kind) {
      case Kind::string:
        return as<StringObject>(left)->text() == as<StringObject>(right)->text();
      case Kind::bitArray:
        return as<BitArrayObject>(left)->bits == as<BitArrayObject>(right)->bits;
      case Kind::tuple:
        return as<TupleObject>(left)->tuple == as<TupleObject>(right)->tuple &&
               as<TupleObject>(left)->v == as<TupleObject>(right)->v;
      case Kind::interval:
        return as<IntervalObject>(left)->start == as<IntervalObject>(right)->start &&
               as<IntervalObject>(left)->end == as<IntervalObject>(right)->end;
      case Kind::host:
        return as<HostValueObject>(left)->host->identity() == as<HostValueObject>(right)->host->identity();
      default:
        return false;
    }
  }
  if (left.tag == Tag::boolean && right.tag == Tag::boolean) return left.b == right.b;
  if (left.tag == Tag::boolean && right.isWhole()) return toInteger64(runtime, right) == (left.b ? 1 : 0);
  if (right.tag == Tag::boolean && left.isWhole()) return toInteger64(runtime, left) == (right.b ? 1 : 0);
  const bool timed = left.tag == Tag::time || right.tag == Tag::time;
  if ((left.isNumber() || left.tag == Tag::time) && (right.isNumber() || right.tag == Tag::time)) {
    if (timed) return toTicks(runtime, left) == toTicks(runtime, right);
    return order(runtime, BinaryOperator::equal, left, right) == 0;
  }
  return left.tag == right.tag && left.tag != Tag::object;
}

int order(Runtime& runtime, BinaryOperator op, const Value& left, const Value& right) {
  const auto three = [](const auto& a, const auto& b) { return a < b ? -1 : a == b ? 0 : a > b ? 1 : 2; };
  const auto numeric = [](const Value& v) { return v.isNumber() || v.tag == Tag::time || v.isBoolean(); };
  if (numeric(left) && numeric(right)) {
    if (left.tag == Tag::time || right.tag == Tag::time) return three(toTicks(runtime, left), toTicks(runtime, right));
    const auto number = [&](const Value& v) { return v.isBoolean() ? Value::ofInteger(v.b ? 1 : 0) : v; };
    const Value a = number(left), b = number(right);
    const Tag tag = wider(a.tag, b.tag);
    if (tag == Tag::real) return three(toFloat(runtime, a), toFloat(runtime, b));
    if (tag == Tag::doubleReal) return three(toDouble(runtime, a), toDouble(runtime, b));
    return three(toInteger64(runtime, a), toInteger64(runtime, b));
  }
  if (const auto* text = as<StringObject>(left)) return three(text->text(), toString(runtime, right));
  if (as<NameObject>(left) && as<NameObject>(right))
    return three(as<NameObject>(left)->folded, as<NameObject>(right)->folded);
  if (numeric(left)) throwUnableToConvert(printed(runtime, right), nativeClassOf(runtime, left)->title);
  throwNoOperator(runtime, op, left);
}

bool slowCompare(Runtime& runtime, BinaryOperator op, const Value& left, const Value& right) {
  if (op == BinaryOperator::equal) return equal(runtime, left, right);
  if (op == BinaryOperator::notEqual) return !equal(runtime, left, right);
  const int result = order(runtime, op, left, right);
  if (result == 2) return false;
  switch (op) {
    case BinaryOperator::less:
      return result < 0;
    case BinaryOperator::greater:
      return result > 0;
    case BinaryOperator::lessEqual:
      return result <= 0;
    default:
      return result >= 0;
  }
}

}  // namespace hostkit::script
