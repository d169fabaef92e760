#include "hostkit/script/library/class_tables.h"
#include "hostkit/script/machine/access.h"
#include "hostkit/script/machine/classes.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/streams.h"
#include "hostkit/script/machine/times.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

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

std::vector<ClassRow> classRows() {
  std::vector<ClassRow> rows = plainClassRows();
  for (ClassRow& row : geometricClassRows()) rows.push_back(std::move(row));
  return rows;
}

}  // namespace hostkit::script
