// Loops and contexts. A numeric loop has three hidden slots: counter, limit, step; one over a collection: the
// collection and the index. The loop's variable is the fourth slot.
#include <limits>

#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/elements.h"
#include "hostkit/script/machine/evaluator.h"
#include "hostkit/script/machine/operators.h"
#include "hostkit/script/machine/printing.h"

namespace hostkit::script {
namespace {

// The widest of the three bounds decides: whole numbers, floats, 64 bits, doubles, times.
Tag widest(const Value* bounds) {
  Tag tag = Tag::integer;
  for (int i = 0; i < 3; ++i)
    if (bounds[i].tag > tag || bounds[i].tag == Tag::time) tag = tag == Tag::time ? tag : bounds[i].tag;
  return tag;
}

}  // namespace

void Evaluator::forPrepare(Value* slots) {
  const Value* bounds = sp_ - 3;
  static constexpr std::array<std::u16string_view, 3> kNames{u"for-loop start", u"for-loop end", u"for-loop step"};
  for (std::size_t i = 0; i < 3; ++i)
    if (!bounds[i].isNumber() && bounds[i].tag != Tag::time)
      throwTypeError(std::u16string(kNames[i]) + u" requires Number, got: " + printed(runtime_, bounds[i]));
  const Tag tag = widest(bounds);
  for (std::size_t i = 0; i < 3; ++i) slots[i] = toNumber(runtime_, bounds[i], tag);
  if (toDouble(runtime_, slots[2]) == 0) throwRuntimeError(u"for-loop step must not be 0");
}

bool Evaluator::forContinues(const Value* slots) {
  switch (slots[0].tag) {
    case Tag::integer:
    case Tag::time:
      return slots[2].i > 0 ? slots[0].i <= slots[1].i : slots[0].i >= slots[1].i;
    case Tag::real:
      return slots[2].f > 0 ? slots[0].f <= slots[1].f : slots[0].f >= slots[1].f;
    case Tag::doubleReal:
      return slots[2].d > 0 ? slots[0].d <= slots[1].d : slots[0].d >= slots[1].d;
    default:
      return slots[2].l > 0 ? slots[0].l <= slots[1].l : slots[0].l >= slots[1].l;
  }
}

bool Evaluator::forStep(Value* slots) {
  step();
  switch (slots[0].tag) {
    case Tag::integer:
    case Tag::time: {
      const std::int64_t next = std::int64_t{slots[0].i} + slots[2].i;
      if (next > std::numeric_limits<std::int32_t>::max() || next < std::numeric_limits<std::int32_t>::min())
        return false;
      const auto counter = static_cast<std::int32_t>(next);
      const Value now = slots[0].tag == Tag::integer ? Value::ofInteger(counter) : Value::ofTime(counter);
      slots[0] = now;
      slots[3] = now;
      return slots[2].i > 0 ? counter <= slots[1].i : counter >= slots[1].i;
    }
    case Tag::real:
      slots[0].f += slots[2].f;
      break;
    case Tag::doubleReal:
      slots[0].d += slots[2].d;
      break;
    default:
      if (__builtin_add_overflow(slots[0].l, slots[2].l, &slots[0].l)) return false;
      break;
  }
  if (!forContinues(slots)) return false;
  slots[3] = slots[0];
  return true;
}

void Evaluator::eachPrepare(Value* slots) {
  const Value& collection = sp_[-1];
  slots[1] = Value::ofInteger(0);
  if (as<StringObject>(collection)) {
    slots[0] = charactersOf(runtime_, collection);
    return;
  }
  if (!isCollection(collection)) throwTypeError(u"for-loop requires collection, got: " + printed(runtime_, collection));
  slots[0] =
      as<ArrayObject>(collection) || as<BitArrayObject>(collection) ? collection : elementsOf(runtime_, collection);
}

// Arrays may change while they are walked: the index decides.
bool Evaluator::eachNext(Value* slots) {
  step();
  if (const auto* array = as<ArrayObject>(slots[0])) {
    const auto index = static_cast<std::size_t>(slots[1].i++);
    if (index >= array->items.size()) return false;
    slots[3] = array->items[index];
    return true;
  }
  const auto& bits = as<BitArrayObject>(slots[0])->bits;
  auto index = static_cast<std::size_t>(slots[1].i);
  while (index < bits.size() && !bits[index]) ++index;
  if (index >= bits.size()) return false;
  slots[1].i = static_cast<std::int32_t>(index) + 1;
  slots[3] = Value::ofInteger(slots[1].i);
  return true;
}

void Evaluator::collect(const Value& array, const Value& value) {
  if (value.tag != Tag::dontCollect) appendTo(runtime_, *as<ArrayObject>(array), value);
}

void Evaluator::pushContext(ContextKind kind, const Value& operand) {
  SavedContext saved;
  saved.kind = kind;
  if (kind == ContextKind::atTime) {
    const std::int32_t ticks = toTicks(runtime_, operand);
    saved.time = runtime_.host().time();
    contexts_.push_back(saved);
    runtime_.host().setTime(ticks);
  } else {
    saved.printAll = runtime_.printAllElements;
    const bool all = slowTest(operand, Test::contextOperand);
    contexts_.push_back(saved);
    runtime_.printAllElements = all;
  }
}

void Evaluator::popContext() {
  const SavedContext saved = contexts_.back();
  contexts_.pop_back();
  if (saved.kind == ContextKind::atTime) {
    runtime_.host().setTime(saved.time);
  } else {
    runtime_.printAllElements = saved.printAll;
  }
}

}  // namespace hostkit::script
