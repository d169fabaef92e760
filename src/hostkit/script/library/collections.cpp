// Arrays and dictionaries. Positions count from 1.
#include <algorithm>
#include <vector>

#include "hostkit/script/library/library.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/elements.h"
#include "hostkit/script/machine/evaluator.h"
#include "hostkit/script/machine/operators.h"
#include "hostkit/script/machine/printing.h"

namespace hostkit::script {
namespace {

// A stable merge sort that survives whatever the comparison does: scripts may write comparisons that contradict
// themselves, change the array, or fail half-way.
// Sorts items[from, to). `less` may throw; the array is then as it was.
template <class Less>
void mergeSort(Runtime& runtime, ArrayObject& array, std::size_t from, std::size_t to, const Less& less) {
  const Root kept(runtime.heap(), runtime.heap().make<ArrayObject>());
  auto& items = static_cast<ArrayObject*>(kept.value.o)->items;
  items.assign(array.items.begin() + static_cast<std::ptrdiff_t>(from),
               array.items.begin() + static_cast<std::ptrdiff_t>(to));
  std::vector<Value> merged(items.size());
  for (std::size_t width = 1; width < items.size(); width *= 2) {
    for (std::size_t left = 0; left < items.size(); left += 2 * width) {
      const std::size_t middle = std::min(left + width, items.size()), right = std::min(left + 2 * width, items.size());
      std::size_t a = left, b = middle;
      for (std::size_t out = left; out < right; ++out)
        merged[out] = b >= right || (a < middle && !less(items[b], items[a])) ? items[a++] : items[b++];
    }
    items.swap(merged);
  }
  if (to <= array.items.size())
    std::copy(items.begin(), items.end(), array.items.begin() + static_cast<std::ptrdiff_t>(from));
}

std::size_t find(Runtime& runtime, const ArrayObject& array, const Value& value) {
  for (std::size_t i = 0; i < array.items.size(); ++i)
    if (equal(runtime, array.items[i], value)) return i + 1;
  return 0;
}

Value append(const Call& call) {
  if (auto* text = as<StringObject>(call[0])) {
    const std::u16string more(toString(call.runtime, call[1]));  // it may be the same text
    if (text->length() + more.size() > kMaxStringLength) throwRuntimeError(u"String too long");
    text->append(more);
    call.runtime.heap().grew(more.size() * 2);
    return call[0];
  }
  if (auto* bits = as<BitArrayObject>(call[0])) {
    setBits(call.runtime, *bits, call[1], call[1]);
    return call[0];
  }
  appendTo(call.runtime, *toArray(call.runtime, call[0]), call[1]);
  return call[0];
}

Value appendIfUnique(const Call& call) {
  auto* array = toArray(call.runtime, call[0]);
  if (find(call.runtime, *array, call[1]) != 0) return Value::ofBoolean(false);
  appendTo(call.runtime, *array, call[1]);
  return Value::ofBoolean(true);
}

// insertItem value array index
Value insertItem(const Call& call) {
  auto* array = toArray(call.runtime, call[1]);
  const std::size_t at = toIndex(call.runtime, call[2]);
  if (at >= array->items.size()) {
    setElement(call.runtime, call[1], call[2], call[0]);
  } else {
    appendTo(call.runtime, *array, Value());
    std::move_backward(array->items.begin() + static_cast<std::ptrdiff_t>(at), array->items.end() - 1,
                       array->items.end());
    array->items[at] = call[0];
  }
  return call[1];
}

Value deleteItem(const Call& call) {
  const std::size_t at = toIndex(call.runtime, call[1]);
  if (auto* bits = as<BitArrayObject>(call[0])) {
    if (at < bits->bits.size()) bits->bits[at] = false;
    return call[0];
  }
  auto* array = toArray(call.runtime, call[0]);
  if (at >= array->items.size()) throwRuntimeError(u"array index out of range, got: " + printed(call.runtime, call[1]));
  array->items.erase(array->items.begin() + static_cast<std::ptrdiff_t>(at));
  return call[0];
}

Value findItem(const Call& call) {
  const Root elements(call.runtime.heap(), isCollection(call[0]) ? elementsOf(call.runtime, call[0])
                                                                 : Value(toArray(call.runtime, call[0])));
  return Value::ofInteger(static_cast<std::int32_t>(find(call.runtime, *as<ArrayObject>(elements.value), call[1])));
}

Value join(const Call& call) {
  auto* array = toArray(call.runtime, call[0]);
  if (!isCollection(call[1])) throwUnableToConvert(printed(call.runtime, call[1]), u"Array");
  const Root more(call.runtime.heap(), elementsOf(call.runtime, call[1]));
  const std::vector<Value> items = as<ArrayObject>(more.value)->items;
  for (const Value& item : items) appendTo(call.runtime, *array, item);
  return call[0];
}

// Whole numbers by themselves sort faster than values do.
bool sortIntegers(ArrayObject& array) {
  std::vector<std::int32_t> numbers;
  numbers.reserve(array.items.size());
  for (const Value& item : array.items) {
    if (!item.isInteger()) return false;
    numbers.push_back(item.i);
  }
  std::sort(numbers.begin(), numbers.end());
  std::transform(numbers.begin(), numbers.end(), array.items.begin(), Value::ofInteger);
  return true;
}

Value sort(const Call& call) {
  auto* array = toArray(call.runtime, call[0]);
  if (sortIntegers(*array)) return call[0];
  mergeSort(call.runtime, *array, 0, array->items.size(),
            [&](const Value& a, const Value& b) { return order(call.runtime, BinaryOperator::less, a, b) < 0; });
  return call[0];
}

// qsort array function [start:] [end:] [more keywords for the function]
Value qsort(const Call& call) {
  auto* array = toArray(call.runtime, call[0]);
  const Value first = call.keyword(u"start"), last = call.keyword(u"end");
  const std::size_t from = first.isUnsupplied() ? 0 : toIndex(call.runtime, first);
  const std::size_t to = last.isUnsupplied() ? array->items.size() : toIndex(call.runtime, last) + 1;
  if (from > to || to > array->items.size()) throwRuntimeError(u"qsort: range outside of the array");
  std::vector<NameObject*> names;
  std::vector<Value> values;
  for (std::size_t i = 0; i < call.keywordNames.size(); ++i) {
    if (call.keywordNames[i]->folded == u"start" || call.keywordNames[i]->folded == u"end") continue;
    names.push_back(call.keywordNames[i]);
    values.push_back(call.keywordValues[i]);
  }
  mergeSort(call.runtime, *array, from, to, [&](const Value& a, const Value& b) {
    const std::array<Value, 2> pair{a, b};
    return toInteger(call.runtime, call.runtime.evaluator().call(call[1], pair, names, values)) < 0;
  });
  return Value::ok();
}

// Of an array, or of the arguments.
template <bool Smallest>
Value extreme(const Call& call) {
  std::span<const Value> values = call.arguments;
  if (call.count() == 1)
    if (const auto* array = as<ArrayObject>(call[0])) values = array->items;
  Value found;
  for (const Value& value : values) {
    const bool first = found.isUndefined();
    if (first || slowCompare(call.runtime, Smallest ? BinaryOperator::less : BinaryOperator::greater, value, found)) {
      found = value;
    }
  }
  return found;
}

Value makeUniqueArray(const Call& call) {
  const auto* array = toArray(call.runtime, call[0]);
  const Root made(call.runtime.heap(), call.runtime.heap().make<ArrayObject>());
  auto* unique = as<ArrayObject>(made.value);
  for (const Value& item : array->items)
    if (find(call.runtime, *unique, item) == 0) appendTo(call.runtime, *unique, item);
  return made.value;
}

// Dictionaries

DictionaryObject& dictionary(const Call& call) {
  auto* found = as<DictionaryObject>(call[0]);
  if (!found) throwUnableToConvert(printed(call.runtime, call[0]), u"Dictionary");
  return *found;
}

Value hasKey(const Call& call) { return Value::ofBoolean(dictionary(call).find(call[1]) != nullptr); }
Value getValue(const Call& call) {
  dictionary(call);
  return getElement(call.runtime, call[0], call[1]);
}
Value setValue(const Call& call) {
  dictionary(call);
  setElement(call.runtime, call[0], call[1], call[2]);
  return call[2];
}
Value removeValue(const Call& call) { return Value::ofBoolean(dictionary(call).remove(call[1])); }

constexpr BuiltinEntry kEntries[] = {
    {u"append", 2, 2, append},
    {u"appendIfUnique", 2, 2, appendIfUnique},
    {u"insertItem", 3, 3, insertItem},
    {u"deleteItem", 2, 2, deleteItem},
    {u"findItem", 2, 2, findItem},
    {u"join", 2, 2, join},
    {u"sort", 1, 1, sort},
    {u"qsort", 2, 2, qsort},
    {u"amin", 0, -1, extreme<true>},
    {u"amax", 0, -1, extreme<false>},
    {u"makeUniqueArray", 1, 1, makeUniqueArray},
    {u"hasDictValue", 2, 2, hasKey},
    {u"getDictValue", 2, 2, getValue},
    {u"setDictValue", 3, 3, setValue},
    {u"removeDictValue", 2, 2, removeValue},
};

}  // namespace

std::span<const BuiltinEntry> collectionBuiltins() { return kEntries; }

}  // namespace hostkit::script
