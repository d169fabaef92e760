// What values are, and their properties by name.
#include "hostkit/script/machine/classes.h"
#include "hostkit/script/library/builtins.h"
#include "hostkit/script/machine/access.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/evaluator.h"
#include "hostkit/script/machine/printing.h"

namespace hostkit::script {
namespace {

Value classOfValue(const Call& call) { return classOf(call.runtime, call[0]); }

Value superClassOf(const Call& call) {
  if (const auto* type = as<ClassObject>(call[0]))
    return type->super ? Value(type->super) : Value(call.runtime.classes().value);
  const ClassObject* type = nativeClassOf(call.runtime, call[0]);
  return type->super ? Value(type->super) : Value(call.runtime.classes().value);
}

Value isKindOfClass(const Call& call) { return Value::ofBoolean(isKindOf(call.runtime, call[0], call[1])); }
Value hasPropertyNamed(const Call& call) {
  return Value::ofBoolean(hasProperty(call.runtime, call[0], toName(call.runtime, call[1])));
}
Value get(const Call& call) { return getProperty(call.runtime, call[0], toName(call.runtime, call[1]), nullptr); }
Value set(const Call& call) {
  setProperty(call.runtime, call[0], toName(call.runtime, call[1]), call[2], nullptr);
  return call[2];
}

Value getPropNames(const Call& call) {
  std::vector<Value> names;
  for (NameObject* name : propertyNames(call.runtime, call[0])) names.emplace_back(name);
  return call.runtime.heap().make<ArrayObject>(std::move(names));
}

// A copy of what can be changed in place; everything else is its own copy. copy array #noMap copies the array alone,
// which is what copying a collection of plain values means here anyway.
Value copy(const Call& call) {
  Heap& heap = call.runtime.heap();
  if (const auto* text = as<StringObject>(call[0])) return call.runtime.heap().make<StringObject>(text);
  if (const auto* array = as<ArrayObject>(call[0])) return heap.make<ArrayObject>(array->items);
  if (const auto* interval = as<IntervalObject>(call[0]))
    return heap.make<IntervalObject>(interval->start, interval->end);
  if (const auto* tuple = as<TupleObject>(call[0])) return heap.make<TupleObject>(tuple->tuple, tuple->v);
  if (const auto* bits = as<BitArrayObject>(call[0])) {
    auto* made = heap.make<BitArrayObject>();
    made->bits = bits->bits;
    return made;
  }
  if (const auto* pair = as<DataPairObject>(call[0]))
    return heap.make<DataPairObject>(pair->names[0], pair->values[0], pair->names[1], pair->values[1]);
  if (const auto* dictionary = as<DictionaryObject>(call[0])) {
    auto* made = heap.make<DictionaryObject>(dictionary->keys);
    for (const auto& [key, value] : dictionary->entries) made->set(key, value);
    return made;
  }
  if (const auto* instance = as<InstanceObject>(call[0])) {
    const Root made(heap, heap.make<InstanceObject>(instance->structure));
    as<InstanceObject>(made.value)->fields = instance->fields;
    if (instance->structure->onClone) call.runtime.evaluator().callMethod(instance->structure->onClone, made.value);
    return made.value;
  }
  return call[0];
}

// A global's value by name; undefined when there is none.
Value globalsGet(const Call& call) {
  GlobalObject* global = call.runtime.findGlobal(toName(call.runtime, call[0]));
  return global ? call.runtime.readGlobal(*global) : Value();
}
Value globalsSet(const Call& call) {
  call.runtime.writeGlobal(*call.runtime.addGlobal(toName(call.runtime, call[0])), call[1]);
  return call[1];
}
Value globalsIs(const Call& call) {
  return Value::ofBoolean(call.runtime.findGlobal(toName(call.runtime, call[0])) != nullptr);
}

constexpr BuiltinEntry kEntries[] = {
    {u"classOf", 1, 1, classOfValue},
    {u"superClassOf", 1, 1, superClassOf},
    {u"isKindOf", 2, 2, isKindOfClass},
    {u"hasProperty", 2, 2, hasPropertyNamed},
    {u"isProperty", 2, 2, hasPropertyNamed},
    {u"getProperty", 2, 2, get},
    {u"setProperty", 3, 3, set},
    {u"getPropNames", 1, 1, getPropNames},
    {u"copy", 1, 2, copy},
    {u"globalVars.get", 1, 1, globalsGet},
    {u"globalVars.set", 2, 2, globalsSet},
    {u"globalVars.isGlobal", 1, 1, globalsIs},
};

}  // namespace

std::span<const BuiltinEntry> classBuiltins() { return kEntries; }

}  // namespace hostkit::script
