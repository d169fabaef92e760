// Arithmetic and comparison.
#pragma once

#include <string_view>

#include "hostkit/script/machine/runtime.h"
#include "hostkit/script/syntax/syntax_tree.h"

namespace hostkit::script {

// All operators on all types. Throws when there is none for the operands.
Value arithmetic(Runtime& runtime, BinaryOperator op, const Value& left, const Value& right);
Value negated(Runtime& runtime, const Value& operand);

// Any two values may be compared for equality; unlike ones are unequal.
bool equal(Runtime& runtime, const Value& left, const Value& right);
// Negative, 0, positive; 2 when unordered (not a number). Throws for types without an order.
int order(Runtime& runtime, BinaryOperator op, const Value& left, const Value& right);
bool slowCompare(Runtime& runtime, BinaryOperator op, const Value& left, const Value& right);

// 32-bit arithmetic wraps.
inline Value wrapped(std::uint32_t bits) { return Value::ofInteger(static_cast<std::int32_t>(bits)); }

inline Value add(Runtime& runtime, const Value& left, const Value& right) {
  if (left.isInteger() && right.isInteger())
    return wrapped(static_cast<std::uint32_t>(left.i) + static_cast<std::uint32_t>(right.i));
  if (left.tag == Tag::real && right.tag == Tag::real) return Value::ofFloat(left.f + right.f);
  return arithmetic(runtime, BinaryOperator::add, left, right);
}
inline Value subtract(Runtime& runtime, const Value& left, const Value& right) {
  if (left.isInteger() && right.isInteger())
    return wrapped(static_cast<std::uint32_t>(left.i) - static_cast<std::uint32_t>(right.i));
  if (left.tag == Tag::real && right.tag == Tag::real) return Value::ofFloat(left.f - right.f);
  return arithmetic(runtime, BinaryOperator::subtract, left, right);
}
inline Value multiply(Runtime& runtime, const Value& left, const Value& right) {
  if (left.isInteger() && right.isInteger())
    return wrapped(static_cast<std::uint32_t>(left.i) * static_cast<std::uint32_t>(right.i));
  if (left.tag == Tag::real && right.tag == Tag::real) return Value::ofFloat(left.f * right.f);
  return arithmetic(runtime, BinaryOperator::multiply, left, right);
}
template <class T>
bool compareAs(BinaryOperator op, T left, T right) {
  switch (op) {
    case BinaryOperator::equal:
      return left == right;
    case BinaryOperator::notEqual:
      return left != right;
    case BinaryOperator::less:
      return left < right;
    case BinaryOperator::greater:
      return left > right;
    case BinaryOperator::lessEqual:
      return left <= right;
    default:
      return left >= right;
  }
}
inline bool compare(Runtime& runtime, BinaryOperator op, const Value& left, const Value& right) {
  if (left.isInteger() && right.isInteger()) return compareAs(op, left.i, right.i);
  if (left.tag == Tag::real && right.tag == Tag::real) return compareAs(op, left.f, right.f);
  return slowCompare(runtime, op, left, right);
}

}  // namespace hostkit::script
