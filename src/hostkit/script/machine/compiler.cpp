// Entry, emission, and the walk over expressions.
#include "hostkit/script/machine/compiler.h"

#include <algorithm>

#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

// How an instruction changes the height of the stack.
std::int32_t stackEffect(Op op, std::size_t a) {
  const auto count = static_cast<std::int32_t>(a);
  switch (op) {
    case Op::constant:
    case Op::text:
    case Op::tuple:
    case Op::undefined:
    case Op::ok:
    case Op::integer:
    case Op::duplicate:
    case Op::getLocal:
    case Op::getBoxed:
    case Op::getOuter:
    case Op::getGlobal:
    case Op::getMember:
    case Op::self:
    case Op::currentFunction:
    case Op::refBoxed:
    case Op::refSlot:
    case Op::refOuter:
    case Op::refGlobal:
    case Op::refMember:
    case Op::makeFunction:
    case Op::makeDefinition:
    case Op::path:
    case Op::lastResult:
    case Op::binaryLocal:
    case Op::makeBitArray:
      return 1;
    case Op::duplicateTwo:
      return 2;
    case Op::pop:
    case Op::storeLocal:
    case Op::makeCell:
    case Op::setProperty:
    case Op::getIndex:
    case Op::refIndex:
    case Op::add:
    case Op::subtract:
    case Op::multiply:
    case Op::divide:
    case Op::power:
    case Op::compare:
    case Op::convert:
    case Op::jumpIfNot:
    case Op::andJump:
    case Op::orJump:
    case Op::jumpIfSupplied:
    case Op::returnValue:
    case Op::collect:
    case Op::addBit:
    case Op::pushContext:
    case Op::assignThrough:
    case Op::eachPrepare:
      return -1;
    case Op::setIndex:
    case Op::compareJump:
    case Op::addBits:
      return -2;
    case Op::forPrepare:
      return -3;
    case Op::call:
    case Op::callMethod:
      return -count;
    case Op::makeArray:
    case Op::makePoint:
      return 1 - count;
    case Op::cutTo:
    case Op::cutKeepTop:
    case Op::setLocal:
    case Op::setBoxed:
    case Op::setOuter:
    case Op::setGlobal:
    case Op::setMember:
    case Op::clearLocals:
    case Op::getProperty:
    case Op::refProperty:
    case Op::dereference:
    case Op::negate:
    case Op::logicalNot:
    case Op::addInteger:
    case Op::compareLocalJump:
    case Op::operand:
    case Op::jump:
    case Op::loopJump:
    case Op::checkBoolean:
    case Op::caseTest:
    case Op::callKeywords:
    case Op::callMethodKeywords:
    case Op::makeStruct:
    case Op::forTest:
    case Op::forStep:
    case Op::eachNext:
    case Op::eachNextJump:
    case Op::pushTry:
    case Op::popTry:
    case Op::endCatch:
    case Op::popContext:
    case Op::setTime:
    case Op::fail:
      break;
  }
  return 0;
}

}  // namespace

Compiler::Unit::Unit(Runtime& runtime, Unit* enclosing)
    : root(runtime.heap(), runtime.heap().make<CodeObject>()),
      code(static_cast<CodeObject*>(root.value.o)),
      outer(enclosing) {}

CodeObject* Compiler::compile(Runtime& runtime, std::span<Node* const> expressions) {
  Compiler compiler(runtime);
  Unit unit(runtime, nullptr);
  compiler.unit_ = &unit;
  if (!expressions.empty()) unit.place = expressions.front()->place;
  compiler.sequence(expressions, true);
  compiler.emit(Op::returnValue);
  return unit.code;
}

std::size_t Compiler::emit(Op op, std::size_t a, std::int32_t b) {
  if (a > 0xFFFF || code().instructions.size() > 0x7FFFFFF) compileError(unit_->place, u"Expression too large");
  code().instructions.push_back({op, static_cast<std::uint16_t>(a), b});
  code().positions.push_back({sourceIndex(unit_->place), static_cast<std::uint32_t>(unit_->place.offset)});
  unit_->height += stackEffect(op, a);
  code().stackRoom = std::max(code().stackRoom, static_cast<std::size_t>(std::max(unit_->height, 0)) + 4);
  return code().instructions.size() - 1;
}

std::uint32_t Compiler::sourceIndex(const Place& place) {
  auto& sources = code().sources;
  const auto found = std::find(sources.begin(), sources.end(), place.source);
  if (found != sources.end()) return static_cast<std::uint32_t>(found - sources.begin());
  sources.push_back(place.source);
  return static_cast<std::uint32_t>(sources.size() - 1);
}

std::int32_t Compiler::addConstant(Value constant) {
  auto& constants = code().constants;
  if (constant.isObject() && constant.o->kind != Kind::string) {
    for (std::size_t i = 0; i < constants.size(); ++i)
      if (constants[i].isObject() && constants[i].o == constant.o) return static_cast<std::int32_t>(i);
  }
  constants.push_back(constant);
  return static_cast<std::int32_t>(constants.size() - 1);
}

void Compiler::push(Value constant, bool wanted) {
  if (!wanted) return;
  if (constant.isUndefined()) {
    emit(Op::undefined);
  } else if (constant.isInteger()) {
    emit(Op::integer, 0, constant.i);
  } else {
    emitConstant(Op::constant, constant);
  }
}

// Code that raises an error when it is reached.
void Compiler::fail(std::u16string_view message, bool wanted) {
  emitConstant(Op::fail, runtime_.newString(std::u16string(message)));
  push(Value(), wanted);
}

void Compiler::compileError(const Place& place, std::u16string_view text) {
  std::u16string message = u"-- Compile error: " + std::u16string(text);
  if (place.source) {
    const LineColumn at = place.source->lineColumn(place.offset);
    message += u"\n--  In line: " + std::u16string(place.source->line(at.line).substr(0, at.column - 1));
    const auto& source = place.source->text;
    for (std::size_t i = place.offset; i < source.size() && (isLetter(source[i]) || isDigit(source[i])); ++i)
      message += source[i];
  }
  ScriptError error(message, place);
  error.setSyntax();
  throw error;
}

void Compiler::compile(const Node& node, bool wanted) {
  const Place before = std::exchange(unit_->place, node.place);
  switch (node.kind) {
    case NodeKind::block:
      block(static_cast<const ListNode&>(node), wanted);
      break;
    case NodeKind::assign:
      assign(static_cast<const AssignNode&>(node), wanted);
      break;
    case NodeKind::declare:
      declareVariables(static_cast<const DeclareNode&>(node), wanted);
      break;
    case NodeKind::ifThen:
      ifThen(static_cast<const IfNode&>(node), wanted);
      break;
    case NodeKind::whileDo:
      whileLoop(static_cast<const LoopNode&>(node), wanted);
      break;
    case NodeKind::doWhile:
      doWhileLoop(static_cast<const LoopNode&>(node), wanted);
      break;
    case NodeKind::forLoop:
      forLoop(static_cast<const ForNode&>(node), wanted);
      break;
    case NodeKind::caseOf:
      caseOf(static_cast<const CaseNode&>(node), wanted);
      break;
    case NodeKind::tryCatch:
      tryCatch(static_cast<const TryNode&>(node), wanted);
      break;
    case NodeKind::function:
      function(static_cast<const FunctionNode&>(node), wanted);
      break;
    case NodeKind::structure:
      structure(static_cast<const StructNode&>(node), wanted);
      break;
    case NodeKind::definition:
      definition(static_cast<const DefinitionNode&>(node), wanted);
      break;
    case NodeKind::context:
      context(static_cast<const ContextNode&>(node), wanted);
      break;
    case NodeKind::maxCommand:
      fail(u"Not supported by this host: " + static_cast<const DefinitionNode&>(node).what, wanted);
      break;
    case NodeKind::when:
      fail(u"Not supported by this host: when", wanted);
      break;
    case NodeKind::returnFrom: {
      const auto height = unit_->height;
      returnFrom(static_cast<const UnaryNode&>(node));
      unit_->height = height + (wanted ? 1 : 0);  // never reached, but the heights must fit
      break;
    }
    case NodeKind::exitLoop:
    case NodeKind::continueLoop: {
      const auto height = unit_->height;
      leave(node.kind == NodeKind::exitLoop ? static_cast<const UnaryNode*>(&node) : nullptr);
      unit_->height = height + (wanted ? 1 : 0);
      break;
    }
    case NodeKind::number:
    case NodeKind::text:
    case NodeKind::name:
    case NodeKind::path:
    case NodeKind::boolean:
    case NodeKind::variable:
    case NodeKind::lastResult:
    case NodeKind::array:
    case NodeKind::bitArray:
    case NodeKind::point:
    case NodeKind::property:
    case NodeKind::index:
    case NodeKind::call:
    case NodeKind::negate:
    case NodeKind::logicalNot:
    case NodeKind::dereference:
    case NodeKind::reference:
    case NodeKind::binary:
    case NodeKind::logical:
    case NodeKind::convert:
    case NodeKind::setContext:
      compileValue(node, wanted);
  }
  unit_->place = before;
}

// A value that is only looked at: a text literal needs no copy.
void Compiler::operand(const Node& node) {
  if (node.kind == NodeKind::text) {
    emitConstant(Op::constant, runtime_.newString(static_cast<const WordNode&>(node).text));
  } else {
    compile(node, true);
  }
}

// What is worth compiling only for its value, or always leaves one.
void Compiler::compileValue(const Node& node, bool wanted) {
  switch (node.kind) {
    case NodeKind::number:
      literal(static_cast<const NumberNode&>(node));
      break;
    case NodeKind::text:
      emitConstant(Op::text, runtime_.newString(static_cast<const WordNode&>(node).text));
      break;
    case NodeKind::name:
      emitConstant(Op::constant, runtime_.name(static_cast<const WordNode&>(node).text));
      break;
    case NodeKind::path:
      emitConstant(Op::path, runtime_.newString(static_cast<const WordNode&>(node).text));
      break;
    case NodeKind::boolean:
      push(Value::ofBoolean(static_cast<const BooleanNode&>(node).value), true);
      break;
    case NodeKind::variable:
      load(resolve(static_cast<const WordNode&>(node)));
      break;
    case NodeKind::lastResult:
      emit(Op::lastResult);
      break;
    case NodeKind::array:
      array(static_cast<const ListNode&>(node));
      break;
    case NodeKind::point:
      for (const Node* item : static_cast<const ListNode&>(node).items) compile(*item, true);
      emit(Op::makePoint, static_cast<const ListNode&>(node).items.size());
      break;
    case NodeKind::bitArray:
      bitArray(static_cast<const BitArrayNode&>(node));
      break;
    case NodeKind::property:
      compile(*static_cast<const PropertyNode&>(node).base, true);
      emitConstant(Op::getProperty, runtime_.name(static_cast<const PropertyNode&>(node).name));
      break;
    case NodeKind::index:
      compile(*static_cast<const IndexNode&>(node).base, true);
      compile(*static_cast<const IndexNode&>(node).index, true);
      emit(Op::getIndex);
      break;
    case NodeKind::call:
      call(static_cast<const CallNode&>(node));
      break;
    case NodeKind::negate:
    case NodeKind::dereference:
    case NodeKind::logicalNot:
      compile(*static_cast<const UnaryNode&>(node).operand, true);
      emit(node.kind == NodeKind::negate       ? Op::negate
           : node.kind == NodeKind::logicalNot ? Op::logicalNot
                                               : Op::dereference);
      break;
    case NodeKind::reference:
      reference(static_cast<const UnaryNode&>(node));
      break;
    case NodeKind::binary:
      binary(static_cast<const BinaryNode&>(node));
      break;
    case NodeKind::logical:
      logical(static_cast<const LogicalNode&>(node));
      break;
    case NodeKind::convert:
      convert(static_cast<const ConvertNode&>(node));
      break;
    default:
      compileError(node.place, u"Unexpected construct");
      break;
  }
  if (!wanted) emit(Op::pop);
}

}  // namespace hostkit::script
