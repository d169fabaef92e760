#include <algorithm>

#include "hostkit/script/library/class_tables.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/tuple_operators.h"

namespace hostkit::script {
namespace {

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
  if (call.count() != Count) throwArgumentCount(u"constructor", Count, call.count());
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

}  // namespace hostkit::script
