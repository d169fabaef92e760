// Boxed variables, references, members, and the instructions that make things.
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/elements.h"
#include "hostkit/script/machine/evaluator.h"
#include "hostkit/script/machine/operators.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/properties.h"
#include "hostkit/script/machine/scene_nodes.h"

namespace hostkit::script {

Value Evaluator::readBoxed(const Value& slot) {
  if (const auto* cell = as<CellObject>(slot)) return cell->value;
  return as<ReferenceObject>(slot) ? readReference(slot) : slot;
}

void Evaluator::writeBoxed(Value& slot, const Value& value) {
  if (auto* cell = as<CellObject>(slot)) {
    cell->value = value;
  } else if (as<ReferenceObject>(slot)) {
    writeReference(slot, value);
  } else {
    slot = runtime_.heap().make<CellObject>(value);
  }
}

Value Evaluator::referenceToBoxed(Value& slot) {
  if (as<ReferenceObject>(slot)) return slot;
  if (!as<CellObject>(slot)) slot = runtime_.heap().make<CellObject>(slot);
  return runtime_.heap().make<ReferenceObject>(ReferenceObject::To::cell, slot, Value());
}

Value Evaluator::readReference(const Value& value) {
  const auto* reference = as<ReferenceObject>(value);
  if (!reference) throwTypeError(u"* requires ValueRef, got: " + printed(runtime_, value));
  switch (reference->to) {
    case ReferenceObject::To::cell:
      return as<CellObject>(reference->base)->value;
    case ReferenceObject::To::slot:
      return as<EnvironmentObject>(reference->base)->slots[static_cast<std::size_t>(reference->key.i)];
    case ReferenceObject::To::global:
      return runtime_.readGlobal(*as<GlobalObject>(reference->base));
    case ReferenceObject::To::member:
      return as<InstanceObject>(reference->base)->fields[static_cast<std::size_t>(reference->key.i)];
    case ReferenceObject::To::property:
      return getProperty(runtime_, reference->base, as<NameObject>(reference->key), nullptr);
    case ReferenceObject::To::element:
      return getElement(runtime_, reference->base, reference->key);
  }
  return {};
}

void Evaluator::writeReference(const Value& target, const Value& value) {
  const auto* reference = as<ReferenceObject>(target);
  if (!reference) throwTypeError(u"* requires ValueRef, got: " + printed(runtime_, target));
  switch (reference->to) {
    case ReferenceObject::To::cell:
      as<CellObject>(reference->base)->value = value;
      break;
    case ReferenceObject::To::slot:
      as<EnvironmentObject>(reference->base)->slots[static_cast<std::size_t>(reference->key.i)] = value;
      break;
    case ReferenceObject::To::global:
      runtime_.writeGlobal(*as<GlobalObject>(reference->base), value);
      break;
    case ReferenceObject::To::member:
      as<InstanceObject>(reference->base)->fields[static_cast<std::size_t>(reference->key.i)] = value;
      break;
    case ReferenceObject::To::property:
      setProperty(runtime_, reference->base, as<NameObject>(reference->key), value, nullptr);
      break;
    case ReferenceObject::To::element:
      setElement(runtime_, reference->base, reference->key, value);
      break;
  }
}

// A data member of the instance whose method runs.
Value& Evaluator::member(std::int32_t field) {
  auto* instance = as<InstanceObject>(*frames_.back().callee);
  if (!instance)
    throwRuntimeError(u"Member access needs an instance: the method was called through " +
                      printed(runtime_, *frames_.back().callee));
  return instance->fields[static_cast<std::size_t>(field)];
}

const Value& Evaluator::outer(std::int32_t slot) const {
  return frames_.back().function->environment->slots[static_cast<std::size_t>(slot)];
}

void Evaluator::makeArray(std::size_t count) {
  auto* made = runtime_.heap().make<ArrayObject>(std::vector<Value>(sp_ - count, sp_));
  sp_ -= count;
  *sp_++ = made;
}

void Evaluator::makePoint(std::size_t count) {
  std::array<float, 12> v{};
  for (std::size_t i = 0; i < count; ++i)
    v[i] = toFloat(runtime_, sp_[static_cast<std::ptrdiff_t>(i) - static_cast<std::ptrdiff_t>(count)]);
  const auto kind = static_cast<TupleKind>(count - 2);
  auto* made = runtime_.heap().make<TupleObject>(kind, v);
  sp_ -= count;
  *sp_++ = made;
}

void Evaluator::addBits(bool range) {
  const Value *first = sp_ - (range ? 2 : 1), *last = sp_ - 1;
  setBits(runtime_, *as<BitArrayObject>(first[-1]), *first, *last);
}

void Evaluator::makeFunction(CodeObject* code) {
  *sp_ = runtime_.heap().make<FunctionObject>(code, frames_.back().environment);
  ++sp_;
}

// The functions lie on the stack: initializer, create, clone, then the methods in the order of the members.
void Evaluator::makeStruct(const StructObject& shape, std::size_t functions) {
  Value* first = sp_ - functions;
  auto* made = runtime_.heap().make<StructObject>(shape.name);
  std::size_t next = 3;
  for (StructObject::Member member : shape.members) {
    if (member.isMethod) member.function = as<FunctionObject>(first[next++]);
    made->add(member);
  }
  made->initializer = as<FunctionObject>(first[0]);
  made->onCreate = as<FunctionObject>(first[1]);
  made->onClone = as<FunctionObject>(first[2]);
  for (std::size_t i = 0; i < functions; ++i)
    if (auto* function = as<FunctionObject>(first[i])) function->owner = made;
  sp_ = first;
  *sp_++ = made;
}

void Evaluator::path(const StringObject& text) {
  *sp_ = resolvePath(runtime_, std::u16string(text.text()));
  ++sp_;
}

Value Evaluator::negate(const Value& operand) { return negated(runtime_, operand); }

// For operands that are not simply a boolean: the complaint names what wanted one.
bool Evaluator::slowTest(const Value& value, Test test) {
  if (value.isBoolean()) return value.b;
  static constexpr std::array<std::u16string_view, 7> kNames{u"if-test", u"while-test", u"where-test", u"and",
                                                             u"or",      u"not",        u"context"};
  throwTypeError(std::u16string(kNames[static_cast<std::size_t>(test)]) + u" requires BooleanClass, got: " +
                 printed(runtime_, value));
}

}  // namespace hostkit::script
