#include "hostkit/script/machine/elements.h"

#include <algorithm>

#include "hostkit/script/machine/classes.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/host_values.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/scene_nodes.h"

namespace hostkit::script {
namespace {

[[noreturn]] void throwNoElements(Runtime& runtime, const Value& value) {
  throw ScriptError(u"-- No \"\"get\"\" function for " + printed(runtime, value));
}

void checkKey(Runtime& runtime, const DictionaryObject& dictionary, const Value& key) {
  const bool fits = dictionary.keys == DictionaryObject::Keys::string ? as<StringObject>(key) != nullptr
                    : dictionary.keys == DictionaryObject::Keys::name ? as<NameObject>(key) != nullptr
                                                                      : key.isWhole();
  static constexpr std::array<std::u16string_view, 3> kTypes{u"String", u"Name", u"Integer"};
  if (!fits) throwUnableToConvert(printed(runtime, key), kTypes[static_cast<std::size_t>(dictionary.keys)]);
}

}  // namespace

std::size_t toIndex(Runtime& runtime, const Value& index) {
  if (!index.isNumber()) throwUnableToConvert(printed(runtime, index), u"Integer");
  const std::int64_t i = toInteger64(runtime, index);
  if (i < 1) throwRuntimeError(u"array index must be positive number, got: " + printed(runtime, index));
  return static_cast<std::size_t>(i - 1);
}

Value getElement(Runtime& runtime, const Value& collection, const Value& index) {
  if (const auto* array = as<ArrayObject>(collection)) {
    const std::size_t i = toIndex(runtime, index);
    return i < array->items.size() ? array->items[i] : Value();
  }
  if (const auto* text = as<StringObject>(collection)) {
    const std::size_t i = toIndex(runtime, index);
    if (i >= text->length()) return {};
    return runtime.newString(std::u16string(1, text->text()[i]));
  }
  if (const auto* bits = as<BitArrayObject>(collection)) {
    const std::size_t i = toIndex(runtime, index);
    return Value::ofBoolean(i < bits->bits.size() && bits->bits[i]);
  }
  if (const auto* tuple = as<TupleObject>(collection)) {
    const std::size_t i = toIndex(runtime, index);
    if (tuple->tuple == TupleKind::matrix3 && i < 4) {
      const auto& v = tuple->v;
      return runtime.heap().make<TupleObject>(TupleKind::point3,
                                              std::array<float, 12>{v[i * 3], v[i * 3 + 1], v[i * 3 + 2]});
    }
    if (i >= tuple->size()) throwRuntimeError(u"index out of range: " + toText(i + 1));
    return Value::ofFloat(tuple->v[i]);
  }
  if (auto* dictionary = as<DictionaryObject>(collection)) {
    checkKey(runtime, *dictionary, index);
    const Value* found = dictionary->find(index);
    return found ? *found : Value();
  }
  if (isCollection(collection)) {
    const Root elements(runtime.heap(), elementsOf(runtime, collection));
    return getElement(runtime, elements.value, index);
  }
  if (const auto* host = as<HostValueObject>(collection))
    if (const auto result = callHost(runtime, *host->host, *runtime.name(u"get"), {&index, 1}, {}, {})) return *result;
  throwNoElements(runtime, collection);
}

void setElement(Runtime& runtime, const Value& collection, const Value& index, const Value& value) {
  if (auto* array = as<ArrayObject>(collection)) {
    const std::size_t i = toIndex(runtime, index);
    if (i >= kMaxArrayLength) throwRuntimeError(u"Array too long");
    if (i >= array->items.size()) {
      runtime.heap().grew((i + 1 - array->items.size()) * sizeof(Value));
      array->items.resize(i + 1);
    }
    array->items[i] = value;
  } else if (auto* text = as<StringObject>(collection)) {
    const std::size_t i = toIndex(runtime, index);
    const std::u16string_view replacement = toString(runtime, value);
    if (i >= text->length() || replacement.size() != 1)
      throwRuntimeError(u"string element needs an index within the string and one character");
    text->setCharacter(i, replacement[0]);
  } else if (auto* bits = as<BitArrayObject>(collection)) {
    const std::size_t i = toIndex(runtime, index);
    const bool on = toBoolean(runtime, value);
    setBits(runtime, *bits, index, index);
    bits->bits[i] = on;
  } else if (auto* tuple = as<TupleObject>(collection)) {
    const std::size_t i = toIndex(runtime, index);
    if (tuple->tuple == TupleKind::matrix3 && i < 4) {
      const auto* row = toPoint3(runtime, value);
      std::copy_n(row->v.begin(), 3, tuple->v.begin() + static_cast<std::ptrdiff_t>(i * 3));
      return;
    }
    if (i >= tuple->size()) throwRuntimeError(u"index out of range: " + toText(i + 1));
    tuple->v[i] = toFloat(runtime, value);
  } else if (auto* dictionary = as<DictionaryObject>(collection)) {
    checkKey(runtime, *dictionary, index);
    if (dictionary->entries.size() >= kMaxArrayLength) throwRuntimeError(u"Dictionary too large");
    dictionary->set(index, value);
    runtime.heap().grew(120);
  } else {
    throw ScriptError(u"-- No \"\"put\"\" function for " + printed(runtime, collection));
  }
}

bool isCollection(const Value& value) {
  if (!value.isObject()) return false;
  switch (value.o->kind) {
    case Kind::array:
    case Kind::bitArray:
    case Kind::dictionary:
    case Kind::nodeSet:
      return true;
    default:
      return false;
  }
}

Value charactersOf(Runtime& runtime, const Value& string) {
  const Root made(runtime.heap(), runtime.heap().make<ArrayObject>());
  const std::u16string text(toString(runtime, string));
  for (const char16_t character : text)
    appendTo(runtime, *as<ArrayObject>(made.value), runtime.newString(std::u16string(1, character)));
  return made.value;
}

Value elementsOf(Runtime& runtime, const Value& collection) {
  if (as<ArrayObject>(collection)) return collection;
  if (const auto* set = as<NodeSetObject>(collection)) return nodesOf(runtime, *set);
  const Root made(runtime.heap(), runtime.heap().make<ArrayObject>());
  auto& items = as<ArrayObject>(made.value)->items;
  if (const auto* bits = as<BitArrayObject>(collection)) {
    for (std::size_t i = 0; i < bits->bits.size(); ++i)
      if (bits->bits[i]) items.push_back(Value::ofInteger(static_cast<std::int32_t>(i) + 1));
  } else if (const auto* dictionary = as<DictionaryObject>(collection)) {
    for (std::size_t i = 0; i < dictionary->entries.size(); ++i)
      items.emplace_back(runtime.heap().make<DataPairObject>(runtime.name(u"key"), dictionary->entries[i].first,
                                                             runtime.name(u"value"), dictionary->entries[i].second));
  }
  runtime.heap().grew(items.size() * sizeof(Value));
  return made.value;
}

void appendTo(Runtime& runtime, ArrayObject& array, const Value& value) {
  if (array.items.size() >= kMaxArrayLength) throwRuntimeError(u"Array too long");
  array.items.push_back(value);
  runtime.heap().grew(sizeof(Value));
}

void setBits(Runtime& runtime, BitArrayObject& bits, const Value& first, const Value& last) {
  const std::size_t from = toIndex(runtime, first), to = toIndex(runtime, last);
  if (std::max(from, to) >= kMaxArrayLength) throwRuntimeError(u"BitArray too long");
  if (to >= bits.bits.size()) {
    runtime.heap().grew((to + 1 - bits.bits.size()) / 8);
    bits.bits.resize(to + 1);
  }
  for (std::size_t i = from; i <= to; ++i) bits.bits[i] = true;
}

}  // namespace hostkit::script
