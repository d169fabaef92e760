// Literals, blocks, calls, operators and assignment.
#include <cmath>

#include "hostkit/script/machine/compiler.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {

void Compiler::literal(const NumberNode& node) {
  const NumberLiteral& number = node.number;
  switch (number.kind) {
    case NumberLiteral::Kind::integer:
      push(Value::ofInteger(static_cast<std::int32_t>(number.whole)), true);
      break;
    case NumberLiteral::Kind::integer64:
      push(Value::ofInteger64(number.whole), true);
      break;
    case NumberLiteral::Kind::integerPtr:
      push(Value::ofIntegerPtr(number.whole), true);
      break;
    case NumberLiteral::Kind::real:
      push(Value::ofFloat(static_cast<float>(number.number)), true);
      break;
    case NumberLiteral::Kind::doubleReal:
      push(Value::ofDouble(number.number), true);
      break;
    case NumberLiteral::Kind::time:
    case NumberLiteral::Kind::normalizedTime:
      push(Value::ofTime(ticksOf(number, runtime_.host())), true);
      break;
  }
}

// The outermost parenthesis of a script's own code opens a scope for undeclared names; every parenthesis ends the life
// of what is declared in it.
void Compiler::block(const ListNode& node, bool wanted) {
  Scope scope;
  scope.takesImplicit = implicitScope() == nullptr;
  unit_->scopes.push_back(scope);
  sequence(node.items, wanted);
  unit_->scopes.pop_back();
}

void Compiler::sequence(std::span<Node* const> items, bool wanted) {
  for (std::size_t i = 0; i < items.size(); ++i) compile(*items[i], wanted && i + 1 == items.size());
  if (items.empty()) push(Value(), wanted);
}

void Compiler::array(const ListNode& node) {
  if (node.items.size() > 0xFFFF) compileError(node.place, u"Array literal too long");
  for (const Node* item : node.items) compile(*item, true);
  emit(Op::makeArray, node.items.size());
}

void Compiler::bitArray(const BitArrayNode& node) {
  emit(Op::makeBitArray);
  for (const auto& [first, last] : node.ranges) {
    compile(*first, true);
    if (last) compile(*last, true);
    emit(last ? Op::addBits : Op::addBit);
  }
}

bool Compiler::isCallOf(const CallNode& node, std::u16string_view function) {
  return node.callee->kind == NodeKind::variable &&
         equalFolded(static_cast<const WordNode&>(*node.callee).text, function);
}

void Compiler::call(const CallNode& node) {
  NameObject* method = nullptr;
  if (node.callee->kind == NodeKind::property) {
    const auto& property = static_cast<const PropertyNode&>(*node.callee);
    compile(*property.base, true);
    method = runtime_.name(property.name);
  } else if (node.callee->kind == NodeKind::variable) {
    const Variable variable = resolve(static_cast<const WordNode&>(*node.callee));
    if (variable.kind == Variable::Kind::method) {
      emit(Op::self);
      method = variable.name;
    } else {
      load(variable);
    }
  } else {
    compile(*node.callee, true);
  }
  for (const Node* argument : node.arguments) {
    const bool pattern =
        argument == node.arguments.front() && argument->kind == NodeKind::text && isCallOf(node, u"format");
    if (pattern) {
      emitConstant(Op::constant, runtime_.newString(patternOf(static_cast<const WordNode&>(*argument))));
    } else {
      compile(*argument, true);
    }
  }
  const Place before = std::exchange(unit_->place, node.callee->place);
  if (node.keywords.empty()) {
    if (method) {
      emitConstant(Op::callMethod, method, node.arguments.size());
    } else {
      emit(Op::call, node.arguments.size());
    }
  } else {
    for (const auto& [name, value] : node.keywords) compile(*value, true);
    const std::int32_t list = keywordList(method, node);
    emit(method ? Op::callMethodKeywords : Op::callKeywords, node.arguments.size(), list);
    unit_->height -= static_cast<std::int32_t>(node.arguments.size() + node.keywords.size());
  }
  unit_->place = before;
}

// A percent sign written \% in the text literal of a format call takes no value: format finds it still escaped.
std::u16string Compiler::patternOf(const WordNode& literal) {
  std::u16string pattern = literal.text;
  for (auto at = literal.percents.rbegin(); at != literal.percents.rend(); ++at) pattern.insert(*at, 1, u'\\');
  return pattern;
}

// The names of a call's keyword arguments; the method's name first when there is one.
std::int32_t Compiler::keywordList(NameObject* method, const CallNode& node) {
  std::vector<NameObject*> list;
  if (method) list.push_back(method);
  for (const auto& [name, value] : node.keywords) list.push_back(runtime_.name(name));
  code().keywordLists.push_back(std::move(list));
  return static_cast<std::int32_t>(code().keywordLists.size() - 1);
}

void Compiler::reference(const UnaryNode& node) {
  const Node& target = *node.operand;
  if (target.kind == NodeKind::variable) {
    takeReference(resolve(static_cast<const WordNode&>(target)), target.place);
  } else if (target.kind == NodeKind::property) {
    compile(*static_cast<const PropertyNode&>(target).base, true);
    emitConstant(Op::refProperty, runtime_.name(static_cast<const PropertyNode&>(target).name));
  } else if (target.kind == NodeKind::index) {
    compile(*static_cast<const IndexNode&>(target).base, true);
    compile(*static_cast<const IndexNode&>(target).index, true);
    emit(Op::refIndex);
  } else {
    compileError(node.place, u"Cannot take a reference of this expression");
  }
}

void Compiler::emitOperator(BinaryOperator op) {
  switch (op) {
    case BinaryOperator::add:
      emit(Op::add);
      break;
    case BinaryOperator::subtract:
      emit(Op::subtract);
      break;
    case BinaryOperator::multiply:
      emit(Op::multiply);
      break;
    case BinaryOperator::divide:
      emit(Op::divide);
      break;
    case BinaryOperator::power:
      emit(Op::power);
      break;
    default: {
      emit(Op::compare, static_cast<std::size_t>(op));
    }
  }
}

// The slot of a plain local variable.
std::optional<std::int32_t> Compiler::localSlot(const Node& node) {
  if (node.kind != NodeKind::variable) return std::nullopt;
  const Variable variable = resolve(static_cast<const WordNode&>(node));
  return variable.kind == Variable::Kind::slot ? std::optional(variable.slot) : std::nullopt;
}

// A plain local, or a number as the complement of its constant: what an instruction can name by itself.
std::optional<std::int32_t> Compiler::simpleOperand(const Node& node) {
  if (node.kind != NodeKind::number) return localSlot(node);
  const NumberLiteral& number = static_cast<const NumberNode&>(node).number;
  if (number.kind == NumberLiteral::Kind::integer)
    return ~addConstant(Value::ofInteger(static_cast<std::int32_t>(number.whole)));
  if (number.kind == NumberLiteral::Kind::real) return ~addConstant(Value::ofFloat(static_cast<float>(number.number)));
  return std::nullopt;
}

void Compiler::binary(const BinaryNode& node) {
  if (node.op <= BinaryOperator::multiply) {
    if (const auto left = localSlot(*node.left)) {
      if (const auto right = simpleOperand(*node.right)) {
        emit(Op::binaryLocal, static_cast<std::size_t>(node.op), *left);
        emit(Op::operand, 0, *right);
        return;
      }
    }
  }
  operand(*node.left);
  const bool small =
      node.right->kind == NodeKind::number && (node.op == BinaryOperator::add || node.op == BinaryOperator::subtract);
  if (small) {
    const NumberLiteral& number = static_cast<const NumberNode&>(*node.right).number;
    if (number.kind == NumberLiteral::Kind::integer && std::abs(number.whole) < (1 << 30)) {
      emit(Op::addInteger, static_cast<std::size_t>(node.op), static_cast<std::int32_t>(number.whole));
      return;
    }
  }
  operand(*node.right);
  emitOperator(node.op);
}

void Compiler::logical(const LogicalNode& node) {
  const auto test = static_cast<std::size_t>(node.isAnd ? Test::andOperand : Test::orOperand);
  compile(*node.left, true);
  const std::size_t jump = emit(node.isAnd ? Op::andJump : Op::orJump, test);
  compile(*node.right, true);
  emit(Op::checkBoolean, test);
  aim(jump);
}

void Compiler::convert(const ConvertNode& node) {
  compile(*node.operand, true);
  compile(*node.target, true);
  emit(Op::convert);
}

void Compiler::assign(const AssignNode& node, bool wanted) {
  switch (node.target->kind) {
    case NodeKind::variable:
      assignVariable(node, wanted);
      break;
    case NodeKind::property:
    case NodeKind::index:
    case NodeKind::dereference:
      assignPlace(node, wanted);
      break;
    default:  // an error only if it is ever reached
      compile(*node.target, false);
      fail(u"Assignment needs a variable, property or element on its left", wanted);
  }
}

void Compiler::assignVariable(const AssignNode& node, bool wanted) {
  const auto& word = static_cast<const WordNode&>(*node.target);
  if (!node.op) {
    const Variable variable = resolve(word);
    compile(*node.value, true);
    store(variable, wanted);
    return;
  }
  const Variable variable = resolve(word);
  load(variable);
  operand(*node.value);
  emitOperator(*node.op);
  store(variable, wanted);
}

void Compiler::assignPlace(const AssignNode& node, bool wanted) {
  const Node& target = *node.target;
  if (target.kind == NodeKind::dereference) {
    compile(*static_cast<const UnaryNode&>(target).operand, true);
    if (node.op) {
      emit(Op::duplicate);
      emit(Op::dereference);
    }
  } else if (target.kind == NodeKind::property) {
    compile(*static_cast<const PropertyNode&>(target).base, true);
    if (node.op) {
      emit(Op::duplicate);
      emitConstant(Op::getProperty, runtime_.name(static_cast<const PropertyNode&>(target).name));
    }
  } else {
    compile(*static_cast<const IndexNode&>(target).base, true);
    compile(*static_cast<const IndexNode&>(target).index, true);
    if (node.op) {
      emit(Op::duplicateTwo);
      emit(Op::getIndex);
    }
  }
  compile(*node.value, true);
  if (node.op) emitOperator(*node.op);
  if (target.kind == NodeKind::dereference) {
    emit(Op::assignThrough);
  } else if (target.kind == NodeKind::property) {
    emitConstant(Op::setProperty, runtime_.name(static_cast<const PropertyNode&>(target).name));
  } else {
    emit(Op::setIndex);
  }
  if (!wanted) emit(Op::pop);
}

}  // namespace hostkit::script
