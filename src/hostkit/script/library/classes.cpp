// What values are, their properties by name, and the classes of numbers, texts, collections and functions.
#include "hostkit/script/machine/classes.h"
#include "hostkit/script/library/library.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/elements.h"
#include "hostkit/script/machine/evaluator.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/properties.h"
#include "hostkit/script/machine/streams.h"
#include "hostkit/script/syntax/text.h"

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

// Properties and constructors

Value countOf(std::size_t count) { return Value::ofInteger(static_cast<std::int32_t>(count)); }

Value stringCount(Runtime&, const Value& self) { return countOf(as<StringObject>(self)->length()); }
Value arrayCount(Runtime&, const Value& self) { return countOf(as<ArrayObject>(self)->items.size()); }
void setArrayCount(Runtime& runtime, const Value& self, const Value& value) {
  const std::int32_t count = toInteger(runtime, value);
  if (count < 0 || static_cast<std::size_t>(count) > kMaxArrayLength)
    throwRuntimeError(u"array count out of range: " + printed(runtime, value));
  as<ArrayObject>(self)->items.resize(static_cast<std::size_t>(count));
  runtime.heap().grew(static_cast<std::size_t>(count) * sizeof(Value));
}
Value bitCount(Runtime&, const Value& self) { return countOf(as<BitArrayObject>(self)->bits.size()); }
void setBitCount(Runtime& runtime, const Value& self, const Value& value) {
  const std::int32_t count = toInteger(runtime, value);
  if (count < 0 || static_cast<std::size_t>(count) > kMaxArrayLength)
    throwRuntimeError(u"bitarray count out of range: " + printed(runtime, value));
  as<BitArrayObject>(self)->bits.resize(static_cast<std::size_t>(count));
}
Value bitNumberSet(Runtime&, const Value& self) {
  std::size_t set = 0;
  for (const bool bit : as<BitArrayObject>(self)->bits) set += bit ? 1 : 0;
  return countOf(set);
}
Value bitIsEmpty(Runtime& runtime, const Value& self) { return Value::ofBoolean(bitNumberSet(runtime, self).i == 0); }
Value dictionaryCount(Runtime&, const Value& self) { return countOf(as<DictionaryObject>(self)->entries.size()); }
Value dictionaryKeys(Runtime& runtime, const Value& self) {
  std::vector<Value> keys;
  for (const auto& [key, value] : as<DictionaryObject>(self)->entries) keys.push_back(key);
  return runtime.heap().make<ArrayObject>(std::move(keys));
}
Value dictionaryType(Runtime& runtime, const Value& self) {
  static constexpr std::array<std::u16string_view, 3> kNames{u"string", u"name", u"integer"};
  return runtime.name(kNames[static_cast<std::size_t>(as<DictionaryObject>(self)->keys)]);
}
Value setCount(Runtime& runtime, const Value& self) { return arrayCount(runtime, elementsOf(runtime, self)); }
Value timeFrame(Runtime& runtime, const Value& self) {
  return Value::ofFloat(static_cast<float>(framesOf(self.i, runtime.host())));
}
Value timeTicks(Runtime&, const Value& self) { return Value::ofInteger(self.i); }
Value timeNormalized(Runtime& runtime, const Value& self) {
  const HostInterval segment = runtime.host().activeSegment();
  const double length = static_cast<double>(segment.end) - segment.start;
  return Value::ofFloat(length == 0 ? 0.0F
                                    : static_cast<float>((static_cast<double>(self.i) - segment.start) / length));
}

Value makeString(const Call& call) {
  return call.runtime.newString(call.count() > 0 ? asText(call.runtime, call[0]) : u"");
}
Value makeArray(const Call& call) {
  return call.runtime.heap().make<ArrayObject>(std::vector<Value>(call.arguments.begin(), call.arguments.end()));
}
Value makeBits(const Call& call) { return call.runtime.heap().make<BitArrayObject>(); }
Value makeStringStream(const Call& call) {
  return call.runtime.heap().make<TextStreamObject>(
      std::u16string(call.count() > 0 ? toString(call.runtime, call[0]) : u""));
}

Value makeDictionary(const Call& call) {
  auto keys = DictionaryObject::Keys::name;
  std::size_t first = 0;
  if (const auto* type = call.count() > 0 ? as<NameObject>(call[0]) : nullptr) {
    first = 1;
    if (type->folded == u"string") keys = DictionaryObject::Keys::string;
    if (type->folded == u"integer") keys = DictionaryObject::Keys::integer;
  } else if (call.count() > 0) {
    const auto* pair = as<ArrayObject>(call[0]);
    if (pair && !pair->items.empty())
      keys = as<StringObject>(pair->items[0]) ? DictionaryObject::Keys::string
             : pair->items[0].isWhole()       ? DictionaryObject::Keys::integer
                                              : keys;
  }
  const Root made(call.runtime.heap(), call.runtime.heap().make<DictionaryObject>(keys));
  for (std::size_t i = first; i < call.count(); ++i) {
    const auto* pair = toArray(call.runtime, call[i]);
    if (pair->items.size() != 2) throwRuntimeError(u"Dictionary entries are arrays of key and value");
    setElement(call.runtime, made.value, pair->items[0], pair->items[1]);
  }
  for (std::size_t i = 0; i < call.keywordNames.size(); ++i) {
    const Value key = keys == DictionaryObject::Keys::string ? Value(call.runtime.newString(call.keywordNames[i]->text))
                                                             : Value(call.keywordNames[i]);
    const Root keyRoot(call.runtime.heap(), key);
    setElement(call.runtime, made.value, key, call.keywordValues[i]);
  }
  return made.value;
}

Value makeDataPair(const Call& call) {
  Runtime& runtime = call.runtime;
  NameObject *first = runtime.name(u"v1"), *second = runtime.name(u"v2");
  if (call.count() == 2) return runtime.heap().make<DataPairObject>(first, call[0], second, call[1]);
  if (call.keywordNames.size() != 2 || call.count() != 0) throwArgumentCount(u"DataPair", 2, call.count());
  return runtime.heap().make<DataPairObject>(call.keywordNames[0], call.keywordValues[0], call.keywordNames[1],
                                             call.keywordValues[1]);
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

std::vector<ClassRow> plainClassRows() {
  return {
      {u"Number", u"", nullptr, {}},
      {u"Integer", u"Number", nullptr, {}},
      {u"Float", u"Number", nullptr, {}},
      {u"Double", u"Number", nullptr, {}},
      {u"Integer64", u"Number", nullptr, {}},
      {u"IntegerPtr", u"Number", nullptr, {}},
      {u"String", u"", makeString, {{u"count", stringCount}}},
      {u"Name", u"", nullptr, {}},
      {u"BooleanClass", u"", nullptr, {}},
      {u"UndefinedClass", u"", nullptr, {}},
      {u"OkClass", u"", nullptr, {}},
      {u"DontCollectClass", u"", nullptr, {}},
      {u"SilentValueClass", u"", nullptr, {}},
      {u"Array", u"", makeArray, {{u"count", arrayCount, setArrayCount}}},
      {u"BitArray",
       u"",
       makeBits,
       {{u"count", bitCount, setBitCount}, {u"numberSet", bitNumberSet}, {u"isEmpty", bitIsEmpty}}},
      {u"Dictionary",
       u"",
       makeDictionary,
       {{u"count", dictionaryCount}, {u"keys", dictionaryKeys}, {u"type", dictionaryType}}},
      {u"DataPair", u"", makeDataPair, {}},
      {u"Time", u"", nullptr, {{u"frame", timeFrame}, {u"ticks", timeTicks}, {u"normalized", timeNormalized}}},
      {u"StringStream", u"", makeStringStream, {}},
      {u"FileStream", u"", nullptr, {}},
      {u"BinStream", u"", nullptr, {}},
      {u"MAXScriptFunction", u"", nullptr, {}},
      {u"Primitive", u"", nullptr, {}},
      {u"MappedGeneric", u"", nullptr, {}},
      {u"StructDef", u"", nullptr, {}},
      {u"MAXClass", u"", nullptr, {}},
      {u"ValueRef", u"", nullptr, {}},
      {u"ObjectSet", u"", nullptr, {{u"count", setCount}}},
      {u"PathName", u"", nullptr, {{u"count", setCount}}},
      {u"node", u"", nullptr, {}},
      {u"GeometryClass", u"node", nullptr, {}},
      {u"camera", u"node", nullptr, {}},
      {u"light", u"node", nullptr, {}},
      {u"helper", u"node", nullptr, {}},
      {u"shape", u"node", nullptr, {}},
  };
}

std::span<const BuiltinEntry> classBuiltins() { return kEntries; }

}  // namespace hostkit::script
