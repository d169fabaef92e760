// Conditions, loops, case, try, return and contexts.
#include "hostkit/script/machine/compiler.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {

// Falls through when the test holds; adds the jumps taken when it does not.
void Compiler::condition(const Node& test, Test kind, std::vector<std::size_t>& jumps) {
  if (test.kind == NodeKind::binary) {
    const auto& comparison = static_cast<const BinaryNode&>(test);
    if (comparison.op >= BinaryOperator::equal) {
      const auto left = localSlot(*comparison.left);
      const auto right = left ? simpleOperand(*comparison.right) : std::nullopt;
      if (right) {
        const Place outside = std::exchange(unit_->place, test.place);
        jumps.push_back(emit(Op::compareLocalJump, static_cast<std::size_t>(comparison.op)));
        emit(Op::operand, static_cast<std::size_t>(*left), *right);
        unit_->place = outside;
        return;
      }
      operand(*comparison.left);
      operand(*comparison.right);
      const Place before = std::exchange(unit_->place, test.place);
      jumps.push_back(emit(Op::compareJump, static_cast<std::size_t>(comparison.op)));
      unit_->place = before;
      return;
    }
  }
  if (test.kind == NodeKind::logical && static_cast<const LogicalNode&>(test).isAnd) {
    const auto& both = static_cast<const LogicalNode&>(test);
    condition(*both.left, Test::andOperand, jumps);
    condition(*both.right, Test::andOperand, jumps);
    return;
  }
  compile(test, true);
  jumps.push_back(emit(Op::jumpIfNot, static_cast<std::size_t>(kind)));
}

void Compiler::ifThen(const IfNode& node, bool wanted) {
  std::vector<std::size_t> otherwise;
  condition(*node.test, Test::ifTest, otherwise);
  const std::int32_t height = unit_->height;
  compile(*node.then, wanted);
  if (!node.otherwise && !wanted) {
    for (const std::size_t jump : otherwise) aim(jump);
    return;
  }
  const std::size_t done = emit(Op::jump);
  for (const std::size_t jump : otherwise) aim(jump);
  unit_->height = height;
  if (node.otherwise) {
    compile(*node.otherwise, wanted);
  } else {
    push(Value(), wanted);
  }
  aim(done);
}

void Compiler::openLoop(bool wanted) {
  Loop loop;
  loop.wantsValue = wanted;
  loop.height = unit_->height;
  loop.regions = unit_->regions.size();
  unit_->loops.push_back(std::move(loop));
}

// The exits of the loop arrive here.
void Compiler::closeLoop() {
  for (const std::size_t jump : unit_->loops.back().exits) aim(jump);
  unit_->loops.pop_back();
}

// exit (null: continue): back to the loop's height, out of the regions entered since, and away.
void Compiler::leave(const UnaryNode* exitNode) {
  if (unit_->loops.empty()) compileError(unit_->place, u"exit and continue are only permitted in loops");
  const std::size_t index = unit_->loops.size() - 1;
  const bool wanted = exitNode && unit_->loops[index].wantsValue;
  if (exitNode && exitNode->operand) {
    compile(*exitNode->operand, wanted);
  } else {
    push(Value(), wanted);
  }
  leaveRegions(unit_->loops[index].regions);
  emit(wanted ? Op::cutKeepTop : Op::cutTo, static_cast<std::size_t>(unit_->loops[index].height));
  const std::size_t jump = emit(Op::jump);
  auto& loop = unit_->loops[index];
  (exitNode ? loop.exits : loop.continues).push_back(jump);
}

void Compiler::leaveRegions(std::size_t downTo) {
  for (std::size_t i = unit_->regions.size(); i > downTo; --i) {
    switch (unit_->regions[i - 1]) {
      case Region::attempt:
        emit(Op::popTry);
        break;
      case Region::handler:
        emit(Op::endCatch);
        break;
      case Region::context:
        emit(Op::popContext);
        break;
    }
  }
}

// The value is the last round's, undefined when there was none.
void Compiler::whileLoop(const LoopNode& node, bool wanted) {
  openLoop(wanted);
  push(Value(), wanted);
  const std::int32_t top = here();
  std::vector<std::size_t> done;
  condition(*node.test, Test::whileTest, done);
  if (wanted) emit(Op::pop);
  compile(*node.body, wanted);
  auto again = unit_->loops.back().continues;
  if (!again.empty() && wanted) {  // continue arrives without a value
    const std::size_t skip = emit(Op::jump);
    for (const std::size_t jump : again) aim(jump);
    emit(Op::undefined);
    --unit_->height;
    aim(skip);
  } else {
    for (const std::size_t jump : again) aim(jump);
  }
  emit(Op::loopJump, 0, top);
  for (const std::size_t jump : done) aim(jump);
  closeLoop();
}

void Compiler::doWhileLoop(const LoopNode& node, bool wanted) {
  openLoop(wanted);
  const std::int32_t top = here();
  compile(*node.body, wanted);
  auto again = unit_->loops.back().continues;
  if (!again.empty() && wanted) {
    const std::size_t skip = emit(Op::jump);
    for (const std::size_t jump : again) aim(jump);
    emit(Op::undefined);
    --unit_->height;
    aim(skip);
  } else {
    for (const std::size_t jump : again) aim(jump);
  }
  std::vector<std::size_t> done;
  condition(*node.test, Test::whileTest, done);
  if (wanted) {
    emit(Op::pop);
    ++unit_->height;
  }
  emit(Op::loopJump, 0, top);
  for (const std::size_t jump : done) aim(jump);
  closeLoop();
}

void Compiler::forLoop(const ForNode& node, bool wanted) {
  std::int32_t collection = -1;
  if (node.collects) {
    collection = newSlot(u"");
    emit(Op::makeArray, 0);
    emit(Op::storeLocal, 0, collection);
  }
  compile(*node.from, true);
  const std::int32_t slots = newSlot(u"", 4);  // counter, limit, step (or source, index, kept), and the variable
  if (node.to) {
    compile(*node.to, true);
    if (node.by) {
      compile(*node.by, true);
    } else {
      emit(Op::integer, 0, 1);
    }
    emit(Op::forPrepare, static_cast<std::size_t>(slots));
  } else {
    emit(Op::eachPrepare, static_cast<std::size_t>(slots));
  }
  unit_->scopes.push_back({true, {}, -1, 0});
  openLoop(wanted && !node.collects);
  forRounds(node, slots, collection);
  if (unit_->loops.back().wantsValue) {
    emit(Op::ok);
    --unit_->height;
    const std::size_t skip = emit(Op::jump);
    closeLoop();
    ++unit_->height;
    aim(skip);
  } else {
    closeLoop();
    if (node.collects && wanted) {
      emit(Op::getLocal, 0, collection);
    } else if (wanted) {
      emit(Op::ok);
    }
  }
  const Scope& scope = unit_->scopes.back();
  if (scope.implicitCount > 0)
    emit(Op::clearLocals, static_cast<std::size_t>(scope.implicitCount), scope.firstImplicit);
  unit_->scopes.pop_back();
}

// One round: the tests, the body, the step. Leaves nothing on the stack.
void Compiler::forRounds(const ForNode& node, std::int32_t slots, std::int32_t collection) {
  std::vector<RoundValue> counters;  // index in the source, index among the kept
  for (std::size_t i = 1; i < node.names.size(); ++i) {
    NameObject* name = runtime_.name(node.names[i]);
    counters.push_back(roundValue(name, newSlot(name->text)));
    emit(Op::integer, 0, 0);
    emit(Op::storeLocal, 0, counters.back().slot);
    renew(counters.back());
  }
  const std::size_t first = emit(node.to ? Op::forTest : Op::eachNext, static_cast<std::size_t>(slots));
  const std::int32_t top = here();
  NameObject* name = runtime_.name(node.names[0]);
  code().slotNames[static_cast<std::size_t>(slots) + 3] = name->text;
  renew(roundValue(name, slots + 3));
  if (node.names.size() > 1) countRound(counters[0]);
  std::vector<std::size_t> stop, skip;
  if (node.whileTest) condition(*node.whileTest, Test::whileTest, stop);
  if (node.where) condition(*node.where, Test::whereTest, skip);
  if (node.names.size() > 2) countRound(counters[1]);
  compile(*node.body, node.collects);
  if (node.collects) emit(Op::collect, 0, collection);
  for (const std::size_t jump : unit_->loops.back().continues) aim(jump);
  for (const std::size_t jump : skip) aim(jump);
  const Scope& scope = unit_->scopes.back();
  if (scope.implicitCount > 0)
    emit(Op::clearLocals, static_cast<std::size_t>(scope.implicitCount), scope.firstImplicit);
  emit(node.to ? Op::forStep : Op::eachNextJump, static_cast<std::size_t>(slots), top);
  aim(first);
  for (const std::size_t jump : stop) aim(jump);
}

// Declares the name of what the loop keeps in `slot`: the slot itself or, when references are taken of the name, a cell
// of each round.
Compiler::RoundValue Compiler::roundValue(NameObject* name, std::int32_t slot) {
  Variable variable{Variable::Kind::slot, name, slot, nullptr};
  if (isBoxed(name)) variable = {Variable::Kind::boxed, name, newSlot(name->text), nullptr};
  unit_->scopes.back().variables.push_back(variable);
  return {slot, variable};
}

// The cell of a new round.
void Compiler::renew(const RoundValue& value) {
  if (value.variable.kind != Variable::Kind::boxed) return;
  emit(Op::getLocal, 0, value.slot);
  emit(Op::makeCell, 0, value.variable.slot);
}

void Compiler::countRound(const RoundValue& counter) {
  emit(Op::getLocal, 0, counter.slot);
  emit(Op::addInteger, static_cast<std::size_t>(BinaryOperator::add), 1);
  emit(Op::storeLocal, 0, counter.slot);
  renew(counter);
}

void Compiler::caseOf(const CaseNode& node, bool wanted) {
  if (node.subject) {
    compile(*node.subject, true);
  } else {
    push(Value::ofBoolean(true), true);
  }
  const std::int32_t height = unit_->height;
  std::vector<std::size_t> done;
  const Node* otherwise = nullptr;
  for (const auto& [label, value] : node.items) {
    if (!label) {
      otherwise = value;
      continue;
    }
    operand(*label);
    emit(Op::caseTest);
    const std::size_t next = emit(Op::jumpIfNot);
    emit(Op::pop);
    compile(*value, wanted);
    done.push_back(emit(Op::jump));
    aim(next);
    unit_->height = height;
  }
  emit(Op::pop);
  if (otherwise) {
    compile(*otherwise, wanted);
  } else {
    push(Value(), wanted);
  }
  for (const std::size_t jump : done) aim(jump);
}

void Compiler::tryCatch(const TryNode& node, bool wanted) {
  const std::int32_t height = unit_->height;
  const std::size_t handler = emit(Op::pushTry, static_cast<std::size_t>(height));
  unit_->regions.push_back(Region::attempt);
  compile(*node.body, wanted);
  unit_->regions.pop_back();
  emit(Op::popTry);
  const std::size_t done = emit(Op::jump);
  aim(handler);
  unit_->height = height;
  unit_->regions.push_back(Region::handler);
  compile(*node.handler, wanted);
  unit_->regions.pop_back();
  emit(Op::endCatch);
  aim(done);
}

void Compiler::returnFrom(const UnaryNode& node) {
  if (node.operand) {
    compile(*node.operand, true);
  } else {
    emit(Op::undefined);
  }
  leaveRegions(0);
  emit(Op::returnValue);
}

}  // namespace hostkit::script
