// Row vectors: a point times a matrix is the point transformed; a * b applies a first.
#include "hostkit/script/machine/tuples.h"

#include <cmath>
#include <numbers>

#include "hostkit/script/machine/conversion.h"

namespace hostkit::script {
namespace {

using Floats = std::array<float, 12>;
constexpr float kDegree = std::numbers::pi_v<float> / 180.0F;

float apply(BinaryOperator op, float a, float b) {
  switch (op) {
    case BinaryOperator::add:
      return a + b;
    case BinaryOperator::subtract:
      return a - b;
    case BinaryOperator::multiply:
      return a * b;
    default:
      return a / b;
  }
}

Floats transformed(const Floats& p, const Floats& m, bool translates) {
  Floats out{};
  for (std::size_t i = 0; i < 3; ++i)
    out[i] = p[0] * m[i] + p[1] * m[3 + i] + p[2] * m[6 + i] + (translates ? m[9 + i] : 0.0F);
  return out;
}

Floats product(const Floats& a, const Floats& b) {
  Floats out{};
  for (std::size_t row = 0; row < 4; ++row) {
    const Floats moved = transformed({a[row * 3], a[row * 3 + 1], a[row * 3 + 2]}, b, row == 3);
    for (std::size_t i = 0; i < 3; ++i) out[row * 3 + i] = moved[i];
  }
  return out;
}

Floats quatProduct(const Floats& a, const Floats& b) {
  return {a[3] * b[0] + a[0] * b[3] + a[1] * b[2] - a[2] * b[1], a[3] * b[1] - a[0] * b[2] + a[1] * b[3] + a[2] * b[0],
          a[3] * b[2] + a[0] * b[1] - a[1] * b[0] + a[2] * b[3], a[3] * b[3] - a[0] * b[0] - a[1] * b[1] - a[2] * b[2]};
}

bool isComponentwise(const TupleObject& t) { return t.isPoint() || t.tuple == TupleKind::color; }

}  // namespace

TupleObject* newTuple(Runtime& runtime, TupleKind kind, const Floats& values) {
  return runtime.heap().make<TupleObject>(kind, values);
}
TupleObject* newPoint3(Runtime& runtime, float x, float y, float z) {
  return newTuple(runtime, TupleKind::point3, {x, y, z});
}

std::optional<Value> tupleArithmetic(Runtime& runtime, BinaryOperator op, const Value& left, const Value& right) {
  if (op > BinaryOperator::divide) return std::nullopt;
  const auto *a = as<TupleObject>(left), *b = as<TupleObject>(right);
  if (!a && !b) return std::nullopt;
  const TupleObject& shape = a ? *a : *b;
  if ((!a && !left.isNumber()) || (!b && !right.isNumber())) return std::nullopt;
  if (a && b && op == BinaryOperator::multiply) {
    if (b->tuple == TupleKind::matrix3 && a->tuple == TupleKind::point3)
      return newTuple(runtime, a->tuple, transformed(a->v, b->v, true));
    if (b->tuple == TupleKind::matrix3 && a->tuple == TupleKind::matrix3)
      return newTuple(runtime, a->tuple, product(a->v, b->v));
    if (b->tuple == TupleKind::quat && a->tuple == TupleKind::quat)
      return newTuple(runtime, a->tuple, quatProduct(b->v, a->v));
    if (b->tuple == TupleKind::quat && a->tuple == TupleKind::point3)
      return newTuple(runtime, a->tuple, transformed(a->v, matrixOf(*b), false));
  }
  if (!isComponentwise(shape) || (a && b && a->tuple != b->tuple)) return std::nullopt;
  Floats out{};
  const std::size_t count = shape.tuple == TupleKind::color ? 3 : shape.size();
  for (std::size_t i = 0; i < count; ++i)
    out[i] = apply(op, a ? a->v[i] : toFloat(runtime, left), b ? b->v[i] : toFloat(runtime, right));
  if (shape.tuple == TupleKind::color) out[3] = shape.v[3];
  return newTuple(runtime, shape.tuple, out);
}

Floats matrixOf(const TupleObject& rotation) {
  if (rotation.tuple == TupleKind::matrix3) return rotation.v;
  const Floats q = quatOf(rotation);
  const float x = q[0], y = q[1], z = q[2], w = q[3];
  return {1 - 2 * (y * y + z * z),
          2 * (x * y + w * z),
          2 * (x * z - w * y),
          2 * (x * y - w * z),
          1 - 2 * (x * x + z * z),
          2 * (y * z + w * x),
          2 * (x * z + w * y),
          2 * (y * z - w * x),
          1 - 2 * (x * x + y * y),
          0,
          0,
          0};
}

Floats quatOf(const TupleObject& rotation) {
  const Floats& v = rotation.v;
  if (rotation.tuple == TupleKind::quat) return v;
  const auto about = [](std::size_t axis, float degrees) {
    Floats q{};
    q[axis] = std::sin(degrees * kDegree / 2);
    q[3] = std::cos(degrees * kDegree / 2);
    return q;
  };
  if (rotation.tuple == TupleKind::eulerAngles)
    return quatProduct(about(2, v[2]), quatProduct(about(1, v[1]), about(0, v[0])));
  if (rotation.tuple == TupleKind::angleAxis) {
    const float length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    if (length == 0) return {0, 0, 0, 1};
    const float s = std::sin(v[3] * kDegree / 2) / length;
    return {v[0] * s, v[1] * s, v[2] * s, std::cos(v[3] * kDegree / 2)};
  }
  // matrix3, by its largest diagonal element
  const auto m = [&](std::size_t r, std::size_t c) { return v[r * 3 + c]; };
  const float trace = m(0, 0) + m(1, 1) + m(2, 2);
  if (trace > 0) {
    const float s = std::sqrt(trace + 1) * 2;
    return {(m(1, 2) - m(2, 1)) / s, (m(2, 0) - m(0, 2)) / s, (m(0, 1) - m(1, 0)) / s, s / 4};
  }
  const std::size_t i = m(0, 0) >= m(1, 1) && m(0, 0) >= m(2, 2) ? 0 : m(1, 1) >= m(2, 2) ? 1 : 2;
  const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
  const float s = std::sqrt(std::fmax(1 + m(i, i) - m(j, j) - m(k, k), 0.0F)) * 2;
  if (s == 0) return {0, 0, 0, 1};
  Floats q{};
  q[i] = s / 4;
  q[j] = (m(i, j) + m(j, i)) / s;
  q[k] = (m(i, k) + m(k, i)) / s;
  q[3] = (m(j, k) - m(k, j)) / s;
  return q;
}

Floats eulerOf(const TupleObject& rotation) {
  if (rotation.tuple == TupleKind::eulerAngles) return rotation.v;
  const Floats m = matrixOf(rotation);
  const float sine = std::fmin(std::fmax(-m[2], -1.0F), 1.0F);
  if (std::fabs(sine) > 0.99999F) return {std::atan2(-m[7], m[4]) / kDegree, std::asin(sine) / kDegree, 0};
  return {std::atan2(m[5], m[8]) / kDegree, std::asin(sine) / kDegree, std::atan2(m[1], m[0]) / kDegree};
}

}  // namespace hostkit::script
