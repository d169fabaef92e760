// Calls of everything that can be called.
#include <algorithm>
#include <array>

#include "hostkit/script/machine/classes.h"
#include "hostkit/script/machine/elements.h"
#include "hostkit/script/machine/evaluator.h"
#include "hostkit/script/machine/host_values.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/properties.h"

namespace hostkit::script {

bool Evaluator::invoke(std::size_t arguments, std::span<NameObject* const> keywords) {
  Value* callee = sp_ - arguments - keywords.size() - 1;
  if (callee->isObject()) {
    switch (callee->o->kind) {
      case Kind::function: {
        auto* function = static_cast<FunctionObject*>(callee->o);
        if (function->code->isMapped && arguments > 0 && isCollection(callee[1])) return mapOver(arguments, keywords);
        enter(function, arguments, keywords);
        return true;
      }
      case Kind::builtin: {
        const BuiltinEntry& entry = static_cast<BuiltinObject*>(callee->o)->entry;
        if (entry.isMapped && arguments > 0 && isCollection(callee[1])) return mapOver(arguments, keywords);
        leaveWith(callee, callBuiltin(entry, callee + 1, arguments, keywords));
        return false;
      }
      case Kind::structure:
        leaveWith(callee, construct(*static_cast<StructObject*>(callee->o), callee + 1, arguments, keywords));
        return false;
      case Kind::classValue: {
        const auto& type = *static_cast<ClassObject*>(callee->o);
        if (!type.constructor) throwRuntimeError(u"Cannot create: " + type.title);
        const BuiltinEntry entry{type.title, 0, -1, type.constructor};
        leaveWith(callee, callBuiltin(entry, callee + 1, arguments, keywords));
        return false;
      }
      case Kind::boundMethod: {
        const auto& bound = *static_cast<BoundMethodObject*>(callee->o);
        NameObject* method = bound.name;
        *callee = bound.self;
        return invokeMethod(method, arguments, keywords);
      }
      case Kind::definition: {
        const auto& definition = *static_cast<DefinitionObject*>(callee->o);
        throwRuntimeError(u"User interface is not supported by this host: " + definition.what + u" " + definition.name);
      }
      default:
        break;
    }
  }
  throwTypeError(u"Call needs function or class, got: " + printed(runtime_, *callee));
}

bool Evaluator::invokeMethod(NameObject* name, std::size_t arguments, std::span<NameObject* const> keywords) {
  Value* callee = sp_ - arguments - keywords.size() - 1;
  const StructObject* structure = nullptr;
  if (const auto* instance = as<InstanceObject>(*callee)) structure = instance->structure;
  if (const auto* definition = as<StructObject>(*callee)) structure = definition;
  if (structure) {
    const auto* found = structure->find(name);
    if (found && found->isMethod) {
      if (found->isPrivate && !mayAccessPrivate(*structure)) throwPrivateMember(runtime_, *structure, name);
      enter(found->function, arguments, keywords);
      return true;
    }
  } else if (const auto* space = as<NamespaceObject>(*callee)) {
    const auto found = space->functions.find(name);
    if (found != space->functions.end()) {
      leaveWith(callee, callBuiltin(found->second->entry, callee + 1, arguments, keywords));
      return false;
    }
  } else if (const auto* host = as<HostValueObject>(*callee)) {
    const std::span<const Value> all(callee + 1, arguments + keywords.size());
    if (const auto result =
            callHost(runtime_, *host->host, *name, all.first(arguments), keywords, all.subspan(arguments))) {
      leaveWith(callee, *result);
      return false;
    }
    if (!host->host->get(name->folded))
      throw ScriptError(u"-- Unknown property: \"" + name->text + u"\" in " + host->host->printed());
  }
  const StructObject* owner = frames_.empty() || !frames_.back().function ? nullptr : frames_.back().function->owner;
  *callee = getProperty(runtime_, *callee, name, owner);
  return invoke(arguments, keywords);
}

bool Evaluator::mayAccessPrivate(const StructObject& structure) const {
  return !frames_.empty() && frames_.back().function && frames_.back().function->owner == &structure;
}

void Evaluator::enter(FunctionObject* function, std::size_t arguments, std::span<NameObject* const> keywords) {
  const CodeObject& code = *function->code;
  Value* callee = sp_ - arguments - keywords.size() - 1;
  if (arguments != code.positional) throwArgumentCount(code.name, code.positional, arguments);
  if (!code.keywords.empty() || !keywords.empty()) arrangeKeywords(code, callee + 1 + arguments, keywords);
  enterFrame(function, function->code, callee, code.positional + code.keywords.size());
}

// Puts keyword arguments into the order of the parameters. Unknown ones are dropped.
void Evaluator::arrangeKeywords(const CodeObject& code, Value* first, std::span<NameObject* const> keywords) {
  const std::vector<Value> given(first, first + keywords.size());
  if (end_ - first < static_cast<std::ptrdiff_t>(code.keywords.size() + 16))
    throwRuntimeError(u"Stack overflow: functions call each other too deep");
  for (std::size_t i = 0; i < code.keywords.size(); ++i) {
    const auto found = std::find(keywords.begin(), keywords.end(), code.keywords[i]);
    first[i] =
        found == keywords.end() ? Value::unsupplied() : given[static_cast<std::size_t>(found - keywords.begin())];
  }
  sp_ = first + code.keywords.size();
}

// `given` slots are filled already.
void Evaluator::enterFrame(FunctionObject* function, CodeObject* code, Value* callee, std::size_t given) {
  if (frames_.size() >= kMaxFrames || end_ - callee < static_cast<std::ptrdiff_t>(code->slots + code->stackRoom + 16))
    throwRuntimeError(u"Stack overflow: functions call each other too deep");
  step();
  Frame frame;
  frame.function = function;
  frame.code = code;
  frame.pc = code->instructions.data();
  frame.callee = callee;
  if (code->keepsLocals && !function) {
    frame.environment = runtime_.heap().make<EnvironmentObject>(code->slots);
    frame.locals = frame.environment->slots.data();
    frame.operands = callee + 1;
  } else {
    frame.environment = function ? function->environment : nullptr;
    frame.locals = callee + 1;
    frame.operands = callee + 1 + code->slots;
    for (Value* slot = frame.locals + given; slot < frame.operands; ++slot) *slot = Value();
  }
  sp_ = frame.operands;
  frames_.push_back(frame);
}

Value Evaluator::callBuiltin(const BuiltinEntry& entry, Value* first, std::size_t arguments,
                             std::span<NameObject* const> keywords) {
  const auto given = static_cast<int>(arguments);
  if (given < entry.minimum || (entry.maximum >= 0 && given > entry.maximum))
    throwArgumentCount(entry.name, static_cast<std::size_t>(given < entry.minimum ? entry.minimum : entry.maximum),
                       arguments);
  const Call call{runtime_, {first, arguments}, {first + arguments, keywords.size()}, keywords};
  return entry.function(call);
}

// Calls the mapped function that is on the stack once for each element of its first argument.
bool Evaluator::mapOver(std::size_t arguments, std::span<NameObject* const> keywords) {
  Value* callee = sp_ - arguments - keywords.size() - 1;
  const Root elements(runtime_.heap(), elementsOf(runtime_, callee[1]));
  std::vector<Value> each(callee + 1, callee + 1 + arguments);
  for (std::size_t i = 0; i < as<ArrayObject>(elements.value)->items.size(); ++i) {
    each[0] = as<ArrayObject>(elements.value)->items[i];
    call(*callee, each, keywords, {callee + 1 + arguments, keywords.size()});
  }
  leaveWith(callee, Value::ok());
  return false;
}

Value Evaluator::construct(StructObject& structure, Value* first, std::size_t arguments,
                           std::span<NameObject* const> keywords) {
  if (arguments > structure.fields) throwArgumentCount(structure.name->text, structure.fields, arguments);
  const Root made(runtime_.heap(), runtime_.heap().make<InstanceObject>(&structure));
  auto& instance = *as<InstanceObject>(made.value);
  std::fill(instance.fields.begin(), instance.fields.end(), Value::unsupplied());
  std::copy(first, first + arguments, instance.fields.begin());
  for (std::size_t i = 0; i < keywords.size(); ++i) {
    const auto* member = structure.find(keywords[i]);
    if (member && !member->isMethod) instance.fields[member->field] = first[arguments + i];
  }
  if (structure.initializer) callMethod(structure.initializer, made.value);
  for (Value& field : instance.fields)
    if (field.isUnsupplied()) field = Value();
  if (structure.onCreate) callMethod(structure.onCreate, made.value);
  return made.value;
}

}  // namespace hostkit::script
