// Scene nodes by name, and what can be done to any node through its properties.
#include "hostkit/script/library/library.h"
#include "hostkit/script/machine/classes.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/host_values.h"
#include "hostkit/script/machine/port.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/properties.h"
#include "hostkit/script/machine/scene_nodes.h"

namespace hostkit::script {
namespace {

HostObject& node(const Call& call) {
  const auto* found = as<HostValueObject>(call[0]);
  if (!found) throwUnableToConvert(printed(call.runtime, call[0]), u"node");
  return *found->host;
}

Value getNodeByName(const Call& call) {
  return nodeByName(call.runtime, std::u16string(toString(call.runtime, call[0])));
}

// The name with the first number behind it, three digits at least, that no node has.
Value uniqueName(const Call& call) {
  const std::u16string base(toString(call.runtime, call[0]));
  for (int number = 1;; ++number) {
    std::string digits = std::to_string(number);
    digits.insert(0, digits.size() < 3 ? 3 - digits.size() : 0, '0');
    const std::u16string candidate = base + std::u16string(digits.begin(), digits.end());
    const Root found(call.runtime.heap(), nodeByName(call.runtime, candidate));
    if (!found.value.isObject()) return call.runtime.newString(candidate);
  }
}

// Still part of the scene.
Value isValidNode(const Call& call) {
  const auto* given = as<HostValueObject>(call[0]);
  if (!given) return Value::ofBoolean(false);
  for (const auto& each : call.runtime.host().nodes())
    if (each->identity() == given->host->identity()) return Value::ofBoolean(true);
  return Value::ofBoolean(false);
}

template <bool Hidden>
Value setHidden(const Call& call) {
  if (!node(call).set(u"ishidden", Hidden)) throwRuntimeError(u"Cannot be hidden: " + printed(call.runtime, call[0]));
  return Value::ok();
}

void setSelected(const Call& call, const Value& node, bool selected) {
  const auto* given = as<HostValueObject>(node);
  if (!given || !given->host->set(u"isselected", selected)) throwUnableToConvert(printed(call.runtime, node), u"node");
}

template <bool Selected>
Value changeSelection(const Call& call) {
  setSelected(call, call[0], Selected);
  return Value::ok();
}

Value clearSelection(const Call& call) {
  for (const auto& each : call.runtime.host().nodes()) each->set(u"isselected", false);
  return Value::ok();
}

// What is selected afterwards is told before anything is let go: it may be the selection itself.
Value select(const Call& call) {
  const auto* set = as<NodeSetObject>(call[0]);
  const Root chosen(call.runtime.heap(), set ? nodesOf(call.runtime, *set) : call[0]);
  clearSelection(call);
  const auto* several = as<ArrayObject>(chosen.value);
  if (!several) {
    setSelected(call, chosen.value, true);
    return Value::ok();
  }
  for (const Value& each : several->items) setSelected(call, each, true);
  return Value::ok();
}

// undefined when the node has no such user property.
Value getUserProp(const Call& call) {
  const AllocationFrame frame(call.runtime.port());
  const auto found = node(call).call(u"getuserprop", {HostValue(asText(call.runtime, call[1]))}, {});
  return found ? fromHost(call.runtime, *found) : Value();
}
Value setUserProp(const Call& call) {
  const AllocationFrame frame(call.runtime.port());
  if (!node(call).call(u"setuserprop", {HostValue(asText(call.runtime, call[1])), toHost(call.runtime, call[2])}, {}))
    throwRuntimeError(u"User properties are not supported for: " + printed(call.runtime, call[0]));
  return Value::ok();
}

Value move(const Call& call) {
  NameObject* name = call.runtime.name(u"position");
  const Root before(call.runtime.heap(), getProperty(call.runtime, call[0], name, nullptr));
  const TupleObject* by = toPoint3(call.runtime, call[1]);
  const TupleObject* from = toPoint3(call.runtime, before.value);
  std::array<float, 12> moved{};
  for (std::size_t i = 0; i < 3; ++i) moved[i] = from->v[i] + by->v[i];
  setProperty(call.runtime, call[0], name, call.runtime.heap().make<TupleObject>(TupleKind::point3, moved), nullptr);
  return Value::ok();
}

constexpr BuiltinEntry kEntries[] = {
    {u"getNodeByName", 1, 1, getNodeByName},
    {u"uniqueName", 1, 1, uniqueName},
    {u"isValidNode", 1, 1, isValidNode},
    {u"hide", 1, 1, setHidden<true>, true},
    {u"unhide", 1, 1, setHidden<false>, true},
    {u"select", 1, 1, select},
    {u"selectMore", 1, 1, changeSelection<true>, true},
    {u"deselect", 1, 1, changeSelection<false>, true},
    {u"clearSelection", 0, 0, clearSelection},
    {u"getUserProp", 2, 2, getUserProp},
    {u"setUserProp", 3, 3, setUserProp, true},
    {u"move", 2, 2, move, true},
};

}  // namespace

std::span<const BuiltinEntry> sceneBuiltins() { return kEntries; }

}  // namespace hostkit::script
