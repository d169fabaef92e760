// Which variable a name means, and code to read and write it.
#include "hostkit/script/machine/compiler.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {

// Finds the variables that the unit takes references of, before any of its code is made: the slots of such locals hold
// cells from the start. Functions and structures below are units of their own, out of whose reach these locals are.
void Compiler::findReferenced(const Node& node) {
  if (node.kind == NodeKind::reference) {
    const Node& target = *static_cast<const UnaryNode&>(node).operand;
    if (target.kind == NodeKind::variable) unit_->referenced.insert(fold(static_cast<const WordNode&>(target).text));
  }
  forEachChild(node, [this](const Node& child) {
    if (child.kind != NodeKind::function && child.kind != NodeKind::structure) findReferenced(child);
  });
}

// The file's own locals need no cells: references to them are to slots of the environment that they live in.
bool Compiler::isBoxed(const NameObject* name) const {
  return unit_->outer && unit_->referenced.contains(name->folded);
}

std::int32_t Compiler::newSlot(std::u16string_view name, std::size_t count) {
  const std::size_t first = code().slots;
  code().slots += count;
  code().slotNames.resize(code().slots);
  code().slotNames.back() = name;
  if (code().slots > 10000) compileError(unit_->place, u"Too many local variables");
  return static_cast<std::int32_t>(first);
}

Compiler::Variable Compiler::declare(NameObject* name) {
  Variable made{Variable::Kind::slot, name, newSlot(name->text), nullptr};
  if (isBoxed(name)) made.kind = Variable::Kind::boxed;
  unit_->scopes.back().variables.push_back(made);
  return made;
}

Compiler::Variable Compiler::declareImplicit(NameObject* name, Scope& scope) {
  Variable made{Variable::Kind::slot, name, newSlot(name->text), nullptr};
  if (isBoxed(name)) made.kind = Variable::Kind::boxed;
  if (scope.firstImplicit < 0) scope.firstImplicit = made.slot;
  scope.implicitCount = made.slot - scope.firstImplicit + 1;
  scope.variables.push_back(made);
  return made;
}

const Compiler::Variable* Compiler::findIn(const Unit& unit, const NameObject* name) const {
  for (auto scope = unit.scopes.rbegin(); scope != unit.scopes.rend(); ++scope)
    for (auto variable = scope->variables.rbegin(); variable != scope->variables.rend(); ++variable)
      if (variable->name == name) return &*variable;
  return nullptr;
}

Compiler::Scope* Compiler::implicitScope() {
  for (auto scope = unit_->scopes.rbegin(); scope != unit_->scopes.rend(); ++scope)
    if (scope->takesImplicit) return &*scope;
  return nullptr;
}

Compiler::Variable Compiler::globalVariable(NameObject* name) {
  return {Variable::Kind::global, name, 0, runtime_.addGlobal(name)};
}

Compiler::Variable Compiler::resolve(const WordNode& node) {
  NameObject* name = runtime_.name(node.text);
  if (node.forceGlobal) return globalVariable(name);
  if (const Variable* local = findIn(*unit_, name)) return *local;
  if (const auto outer = resolveOuter(name, node.place)) return *outer;
  if (runtime_.findGlobal(name)) return globalVariable(name);
  if (Scope* scope = implicitScope()) return declareImplicit(name, *scope);
  return globalVariable(name);
}

// Members of the structure, the function's own name, and locals of the file's block. Locals of an enclosing function
// are out of reach.
std::optional<Compiler::Variable> Compiler::resolveOuter(NameObject* name, const Place& place) {
  if (unit_->members) {
    if (const auto* member = unit_->members->find(name))
      return Variable{member->isMethod ? Variable::Kind::method : Variable::Kind::member, name,
                      static_cast<std::int32_t>(member->field), nullptr};
    if (name->folded == u"this") return Variable{Variable::Kind::self, name, 0, nullptr};
  }
  if (unit_->ownName == name) return Variable{Variable::Kind::ownFunction, name, 0, nullptr};
  for (Unit* outer = unit_->outer; outer; outer = outer->outer) {
    const Variable* found = findIn(*outer, name);
    if (!found) continue;
    if (found->kind == Variable::Kind::global) return *found;
    if (outer->outer) compileError(place, u"No outer local variable references permitted here: " + name->text);
    outer->code->keepsLocals = true;
    return Variable{Variable::Kind::outer, name, found->slot, nullptr};
  }
  return std::nullopt;
}

// The variable that `fn name`, `struct name` and the like define.
Compiler::Variable Compiler::definitionTarget(NameObject* name, std::optional<bool> global) {
  if (global.value_or(false)) return globalVariable(name);
  if (unit_->scopes.empty()) {
    if (global.has_value()) compileError(unit_->place, u"No local declarations at top level: " + name->text);
    return globalVariable(name);
  }
  if (!global.has_value())
    if (const Variable* existing = findIn(*unit_, name)) return *existing;
  return declare(name);
}

void Compiler::load(const Variable& variable) {
  switch (variable.kind) {
    case Variable::Kind::slot:
      emit(Op::getLocal, 0, variable.slot);
      break;
    case Variable::Kind::boxed:
      emit(Op::getBoxed, 0, variable.slot);
      break;
    case Variable::Kind::outer:
      emit(Op::getOuter, 0, variable.slot);
      break;
    case Variable::Kind::member:
      emit(Op::getMember, 0, variable.slot);
      break;
    case Variable::Kind::method:
      emit(Op::self);
      emitConstant(Op::getProperty, variable.name);
      break;
    case Variable::Kind::self:
      emit(Op::self);
      break;
    case Variable::Kind::ownFunction:
      emit(Op::currentFunction);
      break;
    case Variable::Kind::global:
      if (variable.global->isConstant && !variable.global->compute) {
        if (as<TupleObject>(variable.global->value)) {
          emitConstant(Op::tuple, variable.global->value);
        } else {
          push(variable.global->value, true);
        }
      } else {
        emitConstant(Op::getGlobal, variable.global);
      }
      break;
  }
}

// From the top of the stack.
void Compiler::store(const Variable& variable, bool wanted) {
  switch (variable.kind) {
    case Variable::Kind::slot:
      emit(wanted ? Op::setLocal : Op::storeLocal, 0, variable.slot);
      return;
    case Variable::Kind::boxed:
      emit(Op::setBoxed, 0, variable.slot);
      break;
    case Variable::Kind::outer:
      emit(Op::setOuter, 0, variable.slot);
      break;
    case Variable::Kind::member:
      emit(Op::setMember, 0, variable.slot);
      break;
    case Variable::Kind::global:
      emitConstant(Op::setGlobal, variable.global);
      break;
    case Variable::Kind::method:
    case Variable::Kind::self:
    case Variable::Kind::ownFunction:
      compileError(unit_->place, u"Cannot assign to: " + variable.name->text);
  }
  if (!wanted) emit(Op::pop);
}

void Compiler::takeReference(const Variable& variable, const Place& place) {
  switch (variable.kind) {
    case Variable::Kind::slot:
      if (unit_->outer) compileError(place, u"Cannot take a reference of: " + variable.name->text);
      code().keepsLocals = true;
      emit(Op::refSlot, 0, variable.slot);
      break;
    case Variable::Kind::boxed:
      emit(Op::refBoxed, 0, variable.slot);
      break;
    case Variable::Kind::outer:
      emit(Op::refOuter, 0, variable.slot);
      break;
    case Variable::Kind::member:
      emit(Op::refMember, 0, variable.slot);
      break;
    case Variable::Kind::global:
      emitConstant(Op::refGlobal, variable.global);
      break;
    case Variable::Kind::method:
    case Variable::Kind::self:
    case Variable::Kind::ownFunction:
      compileError(place, u"Cannot take a reference of: " + variable.name->text);
  }
}

void Compiler::declareVariables(const DeclareNode& node, bool wanted) {
  for (std::size_t i = 0; i < node.variables.size(); ++i) {
    const auto& [text, value] = node.variables[i];
    NameObject* name = runtime_.name(text);
    const bool keep = wanted && i + 1 == node.variables.size();
    if (node.isGlobal) {
      const Variable variable = globalVariable(name);
      if (!unit_->scopes.empty()) unit_->scopes.back().variables.push_back(variable);
      if (value) {
        compile(*value, true);
        store(variable, keep);
      } else if (keep) {
        load(variable);
      }
      continue;
    }
    if (unit_->scopes.empty()) compileError(node.place, u"No local declarations at top level: " + text);
    if (value) {
      compile(*value, true);
    } else {
      emit(Op::undefined);
    }
    const Variable variable = declare(name);
    if (variable.kind == Variable::Kind::boxed) {
      if (keep) emit(Op::duplicate);
      emit(Op::makeCell, 0, variable.slot);
    } else {
      store(variable, keep);
    }
  }
}

}  // namespace hostkit::script
