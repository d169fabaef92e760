// Points, rotations and matrices.
#include <cmath>

#include "hostkit/script/library/builtins.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/tuple_operators.h"

namespace hostkit::script {
namespace {

using Floats = std::array<float, 12>;

const TupleObject& point(const Call& call, std::size_t index) {
  return *toTuple(call.runtime, call[index], TupleKind::point2, TupleKind::point4);
}

float dotOf(const TupleObject& a, const TupleObject& b) {
  float sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a.v[i] * b.v[i];
  return sum;
}

Value dot(const Call& call) { return Value::ofFloat(dotOf(point(call, 0), point(call, 1))); }
Value cross(const Call& call) {
  const auto &a = toPoint3(call.runtime, call[0])->v, &b = toPoint3(call.runtime, call[1])->v;
  return newPoint3(call.runtime, a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]);
}
Value length(const Call& call) { return Value::ofFloat(std::sqrt(dotOf(point(call, 0), point(call, 0)))); }
Value normalize(const Call& call) {
  const TupleObject& p = point(call, 0);
  const float size = std::sqrt(dotOf(p, p));
  Floats v = p.v;
  for (float& each : v) each = size > 0 ? each / size : 0;
  return newTuple(call.runtime, p.tuple, v);
}
Value distance(const Call& call) {
  const TupleObject &a = point(call, 0), &b = *toTuple(call.runtime, call[1], a.tuple, a.tuple);
  float sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += (a.v[i] - b.v[i]) * (a.v[i] - b.v[i]);
  return Value::ofFloat(std::sqrt(sum));
}

Value inverse(const Call& call) {
  const TupleObject& given = *toTuple(call.runtime, call[0], TupleKind::quat, TupleKind::matrix3);
  if (given.tuple == TupleKind::quat)
    return newTuple(call.runtime, TupleKind::quat, {-given.v[0], -given.v[1], -given.v[2], given.v[3]});
  const Floats& m = toTuple(call.runtime, call[0], TupleKind::matrix3, TupleKind::matrix3)->v;
  const auto cofactor = [&](std::size_t r, std::size_t c) {
    const std::size_t r1 = (r + 1) % 3, r2 = (r + 2) % 3, c1 = (c + 1) % 3, c2 = (c + 2) % 3;
    return m[r1 * 3 + c1] * m[r2 * 3 + c2] - m[r1 * 3 + c2] * m[r2 * 3 + c1];
  };
  const float determinant = m[0] * cofactor(0, 0) + m[1] * cofactor(0, 1) + m[2] * cofactor(0, 2);
  if (determinant == 0) throwRuntimeError(u"matrix cannot be inverted: " + printed(call.runtime, call[0]));
  Floats out{};
  for (std::size_t r = 0; r < 3; ++r)
    for (std::size_t c = 0; c < 3; ++c) out[c * 3 + r] = cofactor(r, c) / determinant;
  for (std::size_t c = 0; c < 3; ++c) out[9 + c] = -(m[9] * out[c] + m[10] * out[3 + c] + m[11] * out[6 + c]);
  return newTuple(call.runtime, TupleKind::matrix3, out);
}

Value translationMatrix(const Call& call) {
  const Floats& p = toPoint3(call.runtime, call[0])->v;
  return newTuple(call.runtime, TupleKind::matrix3, {1, 0, 0, 0, 1, 0, 0, 0, 1, p[0], p[1], p[2]});
}
Value scaleMatrix(const Call& call) {
  const Floats& p = toPoint3(call.runtime, call[0])->v;
  return newTuple(call.runtime, TupleKind::matrix3, {p[0], 0, 0, 0, p[1], 0, 0, 0, p[2], 0, 0, 0});
}
template <std::size_t Axis>
Value axisRotation(const Call& call) {
  Floats v{};
  v[Axis] = toFloat(call.runtime, call[0]);
  return newTuple(call.runtime, TupleKind::matrix3, matrixOf(TupleObject(TupleKind::eulerAngles, v)));
}
Value quatToEuler(const Call& call) {
  return newTuple(call.runtime, TupleKind::eulerAngles,
                  eulerOf(*toTuple(call.runtime, call[0], TupleKind::quat, TupleKind::matrix3)));
}
Value eulerToQuat(const Call& call) {
  return newTuple(call.runtime, TupleKind::quat,
                  quatOf(*toTuple(call.runtime, call[0], TupleKind::eulerAngles, TupleKind::eulerAngles)));
}

constexpr BuiltinEntry kEntries[] = {
    {u"dot", 2, 2, dot},
    {u"cross", 2, 2, cross},
    {u"length", 1, 1, length},
    {u"normalize", 1, 1, normalize},
    {u"distance", 2, 2, distance},
    {u"inverse", 1, 1, inverse},
    {u"transMatrix", 1, 1, translationMatrix},
    {u"scaleMatrix", 1, 1, scaleMatrix},
    {u"rotateXMatrix", 1, 1, axisRotation<0>},
    {u"rotateYMatrix", 1, 1, axisRotation<1>},
    {u"rotateZMatrix", 1, 1, axisRotation<2>},
    {u"quatToEuler", 1, 1, quatToEuler},
    {u"eulerToQuat", 1, 1, eulerToQuat},
};

}  // namespace

std::span<const BuiltinEntry> geometryBuiltins() { return kEntries; }

}  // namespace hostkit::script
