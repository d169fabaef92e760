// Points, colors, rotations, matrices and intervals: their classes, and functions on them.
#include <algorithm>
#include <cmath>

#include "hostkit/script/library/library.h"
#include "hostkit/script/machine/classes.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/tuples.h"

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

// Classes

template <std::size_t Index>
Value component(Runtime&, const Value& self) {
  return Value::ofFloat(as<TupleObject>(self)->v[Index]);
}
template <std::size_t Index>
void setComponent(Runtime& runtime, const Value& self, const Value& value) {
  as<TupleObject>(self)->v[Index] = toFloat(runtime, value);
}
template <std::size_t Index>
PropertyRow at(std::u16string_view name) {
  return {name, component<Index>, setComponent<Index>};
}

template <std::size_t Row>
Value row(Runtime& runtime, const Value& self) {
  const auto& v = as<TupleObject>(self)->v;
  return newPoint3(runtime, v[Row * 3], v[Row * 3 + 1], v[Row * 3 + 2]);
}
template <std::size_t Row>
void setRow(Runtime& runtime, const Value& self, const Value& value) {
  std::copy_n(toPoint3(runtime, value)->v.begin(), 3, as<TupleObject>(self)->v.begin() + Row * 3);
}
template <std::size_t Row>
PropertyRow rowAt(std::u16string_view name) {
  return {name, row<Row>, setRow<Row>};
}

Value rotationPart(Runtime& runtime, const Value& self) {
  return newTuple(runtime, TupleKind::quat, quatOf(*as<TupleObject>(self)));
}
Value intervalStart(Runtime&, const Value& self) { return Value::ofTime(as<IntervalObject>(self)->start); }
Value intervalEnd(Runtime&, const Value& self) { return Value::ofTime(as<IntervalObject>(self)->end); }
void setIntervalStart(Runtime& runtime, const Value& self, const Value& value) {
  as<IntervalObject>(self)->start = toTicks(runtime, value);
}
void setIntervalEnd(Runtime& runtime, const Value& self, const Value& value) {
  as<IntervalObject>(self)->end = toTicks(runtime, value);
}

// Of so many numbers.
template <TupleKind Made, std::size_t Count>
Value ofNumbers(const Call& call) {
  if (call.count() != Count)
    throwArgumentCount(call.runtime.classes().ofTuple[static_cast<std::size_t>(Made)]->title, Count, call.count());
  std::array<float, 12> v{};
  for (std::size_t i = 0; i < Count; ++i) v[i] = toFloat(call.runtime, call[i]);
  return newTuple(call.runtime, Made, v);
}

Value makeColor(const Call& call) {
  if (call.count() < 3 || call.count() > 4) throwArgumentCount(u"color", 3, call.count());
  std::array<float, 12> v{0, 0, 0, 255};
  for (std::size_t i = 0; i < call.count(); ++i) v[i] = toFloat(call.runtime, call[i]);
  return newTuple(call.runtime, TupleKind::color, v);
}

// matrix3 0 is all zeros, matrix3 1 the identity, else four rows.
Value makeMatrix(const Call& call) {
  if (call.count() == 1) {
    const float one = toInteger(call.runtime, call[0]) != 0 ? 1.0F : 0.0F;
    return newTuple(call.runtime, TupleKind::matrix3, {one, 0, 0, 0, one, 0, 0, 0, one, 0, 0, 0});
  }
  if (call.count() != 4) throwArgumentCount(u"matrix3", 4, call.count());
  std::array<float, 12> v{};
  for (std::size_t i = 0; i < 4; ++i)
    std::copy_n(toPoint3(call.runtime, call[i])->v.begin(), 3, v.begin() + static_cast<std::ptrdiff_t>(i * 3));
  return newTuple(call.runtime, TupleKind::matrix3, v);
}

Value makeQuat(const Call& call) {
  if (call.count() == 4) return ofNumbers<TupleKind::quat, 4>(call);
  if (call.count() != 2) throwArgumentCount(u"quat", 4, call.count());
  TupleObject rotation(TupleKind::angleAxis, toPoint3(call.runtime, call[1])->v);
  rotation.v[3] = toFloat(call.runtime, call[0]);
  return newTuple(call.runtime, TupleKind::quat, quatOf(rotation));
}

Value makeAngleAxis(const Call& call) {
  if (call.count() != 2) throwArgumentCount(u"angleAxis", 2, call.count());
  auto v = toPoint3(call.runtime, call[1])->v;
  v[3] = toFloat(call.runtime, call[0]);
  return newTuple(call.runtime, TupleKind::angleAxis, v);
}

Value makeRay(const Call& call) {
  if (call.count() != 2) throwArgumentCount(u"ray", 2, call.count());
  auto v = toPoint3(call.runtime, call[0])->v;
  std::copy_n(toPoint3(call.runtime, call[1])->v.begin(), 3, v.begin() + 3);
  return newTuple(call.runtime, TupleKind::ray, v);
}

Value makeInterval(const Call& call) {
  if (call.count() != 2) throwArgumentCount(u"interval", 2, call.count());
  return call.runtime.heap().make<IntervalObject>(toTicks(call.runtime, call[0]), toTicks(call.runtime, call[1]));
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

std::vector<ClassRow> geometricClassRows() {
  using K = TupleKind;
  return {
      {u"Point2", u"", ofNumbers<K::point2, 2>, {at<0>(u"x"), at<1>(u"y")}},
      {u"Point3", u"", ofNumbers<K::point3, 3>, {at<0>(u"x"), at<1>(u"y"), at<2>(u"z")}},
      {u"Point4", u"", ofNumbers<K::point4, 4>, {at<0>(u"x"), at<1>(u"y"), at<2>(u"z"), at<3>(u"w")}},
      {u"Color",
       u"",
       makeColor,
       {at<0>(u"r"), at<1>(u"g"), at<2>(u"b"), at<3>(u"a"), at<0>(u"red"), at<1>(u"green"), at<2>(u"blue"),
        at<3>(u"alpha")}},
      {u"Quat", u"", makeQuat, {at<0>(u"x"), at<1>(u"y"), at<2>(u"z"), at<3>(u"w")}},
      {u"EulerAngles", u"", ofNumbers<K::eulerAngles, 3>, {at<0>(u"x"), at<1>(u"y"), at<2>(u"z")}},
      {u"AngleAxis", u"", makeAngleAxis, {at<3>(u"angle"), rowAt<0>(u"axis")}},
      {u"Ray", u"", makeRay, {rowAt<0>(u"pos"), rowAt<0>(u"position"), rowAt<1>(u"dir")}},
      {u"Box2",
       u"",
       ofNumbers<K::box2, 4>,
       {at<0>(u"left"), at<1>(u"top"), at<2>(u"right"), at<3>(u"bottom"), at<0>(u"x"), at<1>(u"y"), at<2>(u"w"),
        at<3>(u"h")}},
      {u"Matrix3",
       u"",
       makeMatrix,
       {rowAt<0>(u"row1"),
        rowAt<1>(u"row2"),
        rowAt<2>(u"row3"),
        rowAt<3>(u"row4"),
        rowAt<3>(u"pos"),
        rowAt<3>(u"position"),
        rowAt<3>(u"translation"),
        rowAt<3>(u"translationpart"),
        {u"rotation", rotationPart},
        {u"rotationpart", rotationPart}}},
      {u"Interval",
       u"",
       makeInterval,
       {{u"start", intervalStart, setIntervalStart}, {u"end", intervalEnd, setIntervalEnd}}},
  };
}

std::span<const BuiltinEntry> geometryBuiltins() { return kEntries; }

}  // namespace hostkit::script
