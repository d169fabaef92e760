#include "hostkit/script/machine/host_values.h"

#include <algorithm>

#include "hostkit/script/machine/elements.h"
#include "hostkit/script/machine/port.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/tuples.h"

namespace hostkit::script {
namespace {

struct ToScript {
  Runtime& runtime;
  Value operator()(std::monostate) const { return {}; }
  Value operator()(HostOk) const { return Value::ok(); }
  Value operator()(bool v) const { return Value::ofBoolean(v); }
  Value operator()(std::int32_t v) const { return Value::ofInteger(v); }
  Value operator()(std::int64_t v) const { return Value::ofInteger64(v); }
  Value operator()(float v) const { return Value::ofFloat(v); }
  Value operator()(double v) const { return Value::ofDouble(v); }
  Value operator()(const std::u16string& v) const { return runtime.newString(v); }
  Value operator()(const HostName& v) const { return runtime.name(v.text); }
  Value operator()(HostTime v) const { return Value::ofTime(v.ticks); }
  Value operator()(HostInterval v) const { return runtime.heap().make<IntervalObject>(v.start, v.end); }
  Value operator()(HostPoint3 v) const { return newPoint3(runtime, v.x, v.y, v.z); }
  Value operator()(HostColor v) const { return newTuple(runtime, TupleKind::color, {v.r, v.g, v.b, v.a}); }
  Value operator()(HostQuat v) const { return newTuple(runtime, TupleKind::quat, {v.x, v.y, v.z, v.w}); }
  Value operator()(const HostMatrix3& v) const { return newTuple(runtime, TupleKind::matrix3, v.rows); }
  Value operator()(const std::shared_ptr<HostObject>& v) const {
    return v ? Value(runtime.heap().make<HostValueObject>(v)) : Value();
  }
  Value operator()(hostsdk::Value* v) const { return runtime.port().unwrap(v); }
  Value operator()(const std::shared_ptr<HostList>& v) const {
    const Root made(runtime.heap(), runtime.heap().make<ArrayObject>());
    if (v)
      for (const HostValue& item : v->items) appendTo(runtime, *as<ArrayObject>(made.value), fromHost(runtime, item));
    return made.value;
  }
};

HostValue objectToHost(Runtime& runtime, const Value& value) {
  if (const auto* text = as<StringObject>(value)) return std::u16string(text->text());
  if (const auto* name = as<NameObject>(value)) return HostName{name->text};
  if (const auto* interval = as<IntervalObject>(value)) return HostInterval{interval->start, interval->end};
  if (const auto* host = as<HostValueObject>(value)) return host->host;
  if (as<ArrayObject>(value) || as<NodeSetObject>(value) || as<BitArrayObject>(value)) {
    auto list = std::make_shared<HostList>();
    const Root elements(runtime.heap(), elementsOf(runtime, value));
    for (const Value& item : as<ArrayObject>(elements.value)->items)
      list->items.push_back(item.isObject() && item.o->kind == Kind::array ? HostValue(runtime.port().publish(item))
                                                                           : toHost(runtime, item));
    return list;
  }
  if (const auto* tuple = as<TupleObject>(value)) {
    const auto& v = tuple->v;
    switch (tuple->tuple) {
      case TupleKind::point3:
        return HostPoint3{v[0], v[1], v[2]};
      case TupleKind::color:
        return HostColor{v[0], v[1], v[2], v[3]};
      case TupleKind::matrix3:
        return HostMatrix3{v};
      case TupleKind::quat:
      case TupleKind::eulerAngles:
      case TupleKind::angleAxis: {
        const auto q = quatOf(*tuple);
        return HostQuat{q[0], q[1], q[2], q[3]};
      }
      case TupleKind::point2:
      case TupleKind::point4:
      case TupleKind::ray:
      case TupleKind::box2:
        break;
    }
  }
  return runtime.port().publish(value);
}

// Does what may throw a WrongValue.
template <class Work>
auto wordingRefusals(Runtime& runtime, Work&& work) {
  try {
    return work();
  } catch (const WrongValue& wrong) {
    const Root got(runtime.heap(), fromHost(runtime, wrong.got));
    throwTypeError(wrong.what + u" requires " + wrong.wanted + u", got: " + printed(runtime, got.value));
  }
}

}  // namespace

Value fromHost(Runtime& runtime, const HostValue& value) { return std::visit(ToScript{runtime}, value); }

HostValue toHost(Runtime& runtime, const Value& value) {
  switch (value.tag) {
    case Tag::undefined:
    case Tag::unsupplied:
      return std::monostate{};
    case Tag::ok:
    case Tag::dontCollect:
    case Tag::silentValue:
      return HostOk{};
    case Tag::boolean:
      return value.b;
    case Tag::integer:
      return value.i;
    case Tag::integer64:
    case Tag::integerPtr:
      return value.l;
    case Tag::real:
      return value.f;
    case Tag::doubleReal:
      return value.d;
    case Tag::time:
      return HostTime{value.i};
    case Tag::object:
      break;
  }
  return objectToHost(runtime, value);
}

bool setOfHost(Runtime& runtime, HostObject& object, const NameObject& name, const Value& value) {
  const AllocationFrame frame(runtime.port());
  return wordingRefusals(runtime, [&] { return object.set(name.folded, toHost(runtime, value)); });
}

std::optional<Value> callHost(Runtime& runtime, HostObject& object, const NameObject& name,
                              std::span<const Value> arguments, std::span<NameObject* const> keywordNames,
                              std::span<const Value> keywordValues) {
  const AllocationFrame frame(runtime.port());
  std::vector<HostValue> given;
  given.reserve(arguments.size());
  for (const Value& argument : arguments) given.push_back(toHost(runtime, argument));
  HostKeywords keywords;
  for (std::size_t i = 0; i < keywordNames.size(); ++i)
    keywords.emplace_back(keywordNames[i]->folded, toHost(runtime, keywordValues[i]));
  const auto result = wordingRefusals(runtime, [&] { return object.call(name.folded, given, keywords); });
  if (!result) return std::nullopt;
  return fromHost(runtime, *result);
}

}  // namespace hostkit::script
