// Functions, structures, contexts, and definitions that only get a name.
#include "hostkit/script/machine/compiler.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {

void Compiler::function(const FunctionNode& node, bool wanted) {
  const Variable target = definitionTarget(runtime_.name(node.name), node.declaredGlobal);
  const Root body(runtime_.heap(), functionBody(node, nullptr));
  makeFunction(static_cast<CodeObject*>(body.value.o));
  store(target, wanted);
}

void Compiler::makeFunction(CodeObject* body) { emitConstant(Op::makeFunction, body); }

// With `members` the function is a method of that structure.
CodeObject* Compiler::functionBody(const FunctionNode& node, const StructObject* members) {
  Unit unit(runtime_, unit_);
  unit.members = members;
  unit.place = node.place;
  NameObject* name = runtime_.name(node.name);
  const Variable* own = findIn(*unit_, name);
  const bool definesLocal = own && own->kind != Variable::Kind::global;
  if (!members && definesLocal) unit.ownName = name;
  unit_ = &unit;
  unit.code->name = node.name;
  unit.code->isMapped = node.isMapped;
  unit.scopes.push_back({true, {}, -1, 0});
  try {
    findReferenced(node);
    parameters(node);
    compile(*node.body, true);
    emit(Op::returnValue);
  } catch (...) {
    unit_ = unit.outer;
    throw;
  }
  unit_ = unit.outer;
  return unit.code;
}

void Compiler::parameters(const FunctionNode& node) {
  const auto add = [&](const Parameter& parameter) {
    NameObject* name = runtime_.name(parameter.name);
    const std::int32_t slot = newSlot(name->text);
    const bool boxed = parameter.byReference || isBoxed(name);
    unit_->scopes.back().variables.push_back(
        {boxed ? Variable::Kind::boxed : Variable::Kind::slot, name, slot, nullptr});
    return slot;
  };
  std::vector<std::pair<const Parameter*, std::int32_t>> slots;
  for (const Parameter& parameter : node.parameters)
    if (!parameter.isKeyword) slots.emplace_back(&parameter, add(parameter));
  code().positional = slots.size();
  for (const Parameter& parameter : node.parameters) {
    if (!parameter.isKeyword) continue;
    slots.emplace_back(&parameter, add(parameter));
    code().keywords.push_back(runtime_.name(parameter.name));
  }
  for (const auto& [parameter, slot] : slots) {
    if (parameter->defaultValue) {
      emit(Op::getLocal, 0, slot);
      const std::size_t supplied = emit(Op::jumpIfSupplied);
      compile(*parameter->defaultValue, true);
      emit(Op::storeLocal, 0, slot);
      aim(supplied);
    }
    if (!parameter->byReference && isBoxed(runtime_.name(parameter->name))) {
      emit(Op::getLocal, 0, slot);
      emit(Op::makeCell, 0, slot);
    }
  }
}

// Pushes the functions that the structure is made of, then makes it: initializer, create, clone, methods.
void Compiler::structure(const StructNode& node, bool wanted) {
  const Variable target = definitionTarget(runtime_.name(node.name), node.declaredGlobal);
  const Root shape(runtime_.heap(), structTemplate(node));
  const auto& members = *static_cast<StructObject*>(shape.value.o);
  const std::int32_t constant = addConstant(shape.value);
  const Root initializer(runtime_.heap(), structInitializer(node, members));
  makeFunction(static_cast<CodeObject*>(initializer.value.o));
  for (const std::u16string_view handler : {u"on create", u"on clone"}) {
    const FunctionNode* found = nullptr;
    for (const StructMember& member : node.members)
      if (member.isHandler && member.name == handler) found = member.function;
    if (!found) {
      emit(Op::undefined);
      continue;
    }
    const Root body(runtime_.heap(), functionBody(*found, &members));
    makeFunction(static_cast<CodeObject*>(body.value.o));
  }
  std::size_t methods = 3;
  for (const StructMember& member : node.members) {
    if (member.isHandler || !member.function) continue;
    const Root body(runtime_.heap(), functionBody(*member.function, &members));
    makeFunction(static_cast<CodeObject*>(body.value.o));
    ++methods;
  }
  emit(Op::makeStruct, methods, constant);
  unit_->height -= static_cast<std::int32_t>(methods) - 1;
  store(target, wanted);
}

StructObject* Compiler::structTemplate(const StructNode& node) {
  const Root made(runtime_.heap(), runtime_.heap().make<StructObject>(runtime_.name(node.name)));
  auto* shape = static_cast<StructObject*>(made.value.o);
  for (const StructMember& member : node.members) {
    if (member.isHandler) continue;
    StructObject::Member added;
    added.name = runtime_.name(member.name);
    added.isPrivate = member.isPrivate;
    added.isMethod = member.function != nullptr;
    shape->add(added);
  }
  return shape;
}

// Gives the data members that the constructor left open their defaults.
CodeObject* Compiler::structInitializer(const StructNode& node, const StructObject& members) {
  Unit unit(runtime_, unit_);
  unit.members = &members;
  unit.place = node.place;
  unit_ = &unit;
  unit.code->name = node.name;
  unit.scopes.push_back({true, {}, -1, 0});
  try {
    for (const StructMember& member : node.members)
      if (member.value) findReferenced(*member.value);
    for (const StructMember& member : node.members) {
      if (!member.value) continue;
      const auto field = static_cast<std::int32_t>(members.find(runtime_.name(member.name))->field);
      emit(Op::getMember, 0, field);
      const std::size_t supplied = emit(Op::jumpIfSupplied);
      compile(*member.value, true);
      emit(Op::setMember, 0, field);
      emit(Op::pop);
      aim(supplied);
    }
    emit(Op::undefined);
    emit(Op::returnValue);
  } catch (...) {
    unit_ = unit.outer;
    throw;
  }
  unit_ = unit.outer;
  return unit.code;
}

void Compiler::definition(const DefinitionNode& node, bool wanted) {
  const Variable target = definitionTarget(runtime_.name(node.name), node.declaredGlobal);
  const Root made(runtime_.heap(), runtime_.heap().make<DefinitionObject>(node.what, node.name));
  emitConstant(Op::makeDefinition, made.value);
  store(target, wanted);
}

// `at time` and `with printAllElements` change something; `undo`, `redraw`, `animate`, `quiet` and their like are
// evaluated and have nothing to change here; coordinate systems other than the world's are refused.
void Compiler::context(const ContextNode& node, bool wanted) {
  if (!node.body) {
    setContext(node, wanted);
    return;
  }
  const std::size_t before = unit_->regions.size();
  for (const ContextPart& part : node.parts) openContext(part);
  compile(*node.body, wanted);
  leaveRegions(before);
  unit_->regions.resize(before);
}

void Compiler::openContext(const ContextPart& part) {
  const bool isWorld = part.operand && part.operand->kind == NodeKind::variable &&
                       equalFolded(static_cast<const WordNode&>(*part.operand).text, u"world");
  if (part.word == u"coordsys" || part.word == u"about" || part.word == u"in" || part.word == u"at level" ||
      part.word == u"pivot") {
    if (!isWorld) fail(u"Only world coordinates are supported by this host: " + part.word, false);
    return;
  }
  if (part.label) compile(*part.label, false);
  if (!part.operand) return fail(u"A context needs an operand: " + part.word, false);
  compile(*part.operand, true);
  if (part.word == u"at time" || part.word == u"printallelements") {
    emit(Op::pushContext,
         static_cast<std::size_t>(part.word == u"at time" ? ContextKind::atTime : ContextKind::printAllElements));
    unit_->regions.push_back(Region::context);
  } else if (part.word == u"defaultaction") {
    emit(Op::pop);
  } else {
    emit(Op::checkBoolean, static_cast<std::size_t>(Test::contextOperand));
    emit(Op::pop);
  }
}

void Compiler::setContext(const ContextNode& node, bool wanted) {
  const ContextPart& part = node.parts.front();
  const bool inert = part.word == u"set animate" || part.word == u"set undo";
  if ((!inert && part.word != u"set time") || !part.operand) {
    fail(u"Not supported by this host: " + part.word, wanted);
    return;
  }
  compile(*part.operand, true);
  if (inert) {
    emit(Op::checkBoolean, static_cast<std::size_t>(Test::contextOperand));
  } else {
    emit(Op::setTime);
  }
  if (!wanted) emit(Op::pop);
}

}  // namespace hostkit::script
