// The instructions, one case each.
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/elements.h"
#include "hostkit/script/machine/evaluator.h"
#include "hostkit/script/machine/operators.h"
#include "hostkit/script/machine/properties.h"

namespace hostkit::script {

Value Evaluator::dispatch(std::size_t entry) {
  Frame* frame = &frames_.back();
  const Instruction* pc = frame->pc;
  Value* sp = sp_;
  Value* locals = frame->locals;
  const Value* constants = frame->code->constants.data();

  // Everything outside this function sees the frame's place and the stack only through these.
  const auto reload = [&] {
    frame = &frames_.back();
    pc = frame->pc;
    sp = sp_;
    locals = frame->locals;
    constants = frame->code->constants.data();
  };
  const auto name = [&](std::int32_t index) { return static_cast<NameObject*>(constants[index].o); };
  const auto target = [&](std::int32_t index) { return frame->code->instructions.data() + index; };

  // The structure whose private members may be used here.
  const auto owner = [&] { return frame->function ? frame->function->owner : nullptr; };

  for (;;) {
    const Instruction& at = *pc;
    frame->pc = pc++;
    sp_ = sp;
    switch (at.op) {
      case Op::constant:
        (sp++)->copyFrom(constants[at.b]);
        break;
      case Op::text:
        *sp++ = runtime_.heap().make<StringObject>(static_cast<const StringObject*>(constants[at.b].o));
        break;
      case Op::tuple: {
        const auto& shape = *static_cast<const TupleObject*>(constants[at.b].o);
        *sp++ = runtime_.heap().make<TupleObject>(shape.tuple, shape.v);
        break;
      }
      case Op::undefined:
        *sp++ = Value();
        break;
      case Op::ok:
        *sp++ = Value::ok();
        break;
      case Op::integer:
        *sp++ = Value::ofInteger(at.b);
        break;
      case Op::pop:
        --sp;
        break;
      case Op::duplicate:
        *sp = sp[-1];
        ++sp;
        break;
      case Op::duplicateTwo:
        sp[0] = sp[-2];
        sp[1] = sp[-1];
        sp += 2;
        break;
      case Op::cutTo:
        sp = frame->operands + at.a;
        break;
      case Op::cutKeepTop:
        frame->operands[at.a] = sp[-1];
        sp = frame->operands + at.a + 1;
        break;

      case Op::getLocal:
        (sp++)->copyFrom(locals[at.b]);
        break;
      case Op::setLocal:
        locals[at.b].copyFrom(sp[-1]);
        break;
      case Op::storeLocal:
        locals[at.b].copyFrom(*--sp);
        break;
      case Op::getBoxed:
        *sp = readBoxed(locals[at.b]);
        ++sp;
        break;
      case Op::setBoxed:
        writeBoxed(locals[at.b], sp[-1]);
        break;
      case Op::makeCell:
        locals[at.b] = runtime_.heap().make<CellObject>(sp[-1]);
        --sp;
        break;
      case Op::getOuter:
        *sp++ = outer(at.b);
        break;
      case Op::setOuter:
        frame->function->environment->slots[static_cast<std::size_t>(at.b)] = sp[-1];
        break;
      case Op::getGlobal: {
        auto& global = *static_cast<GlobalObject*>(constants[at.b].o);
        *sp = global.isHost || global.compute ? runtime_.readGlobal(global) : global.value;
        ++sp;
        break;
      }
      case Op::setGlobal:
        runtime_.writeGlobal(*static_cast<GlobalObject*>(constants[at.b].o), sp[-1]);
        break;
      case Op::getMember:
        *sp = member(at.b);
        ++sp;
        break;
      case Op::setMember:
        member(at.b) = sp[-1];
        break;
      case Op::self:
        *sp++ = *frame->callee;
        break;
      case Op::currentFunction:
        *sp++ = frame->function;
        break;
      case Op::clearLocals:
        for (std::int32_t i = 0; i < at.a; ++i) locals[at.b + i] = Value();
        break;

      case Op::getProperty:
        sp[-1] = getProperty(runtime_, sp[-1], name(at.b), owner());
        break;
      case Op::setProperty:
        setProperty(runtime_, sp[-2], name(at.b), sp[-1], owner());
        sp[-2] = sp[-1];
        --sp;
        break;
      case Op::getIndex:
        sp[-2] = getElement(runtime_, sp[-2], sp[-1]);
        --sp;
        break;
      case Op::setIndex:
        setElement(runtime_, sp[-3], sp[-2], sp[-1]);
        sp[-3] = sp[-1];
        sp -= 2;
        break;

      case Op::refBoxed:
        *sp = referenceToBoxed(locals[at.b]);
        ++sp;
        break;
      case Op::refSlot:
        *sp = runtime_.heap().make<ReferenceObject>(ReferenceObject::To::slot, frame->environment,
                                                    Value::ofInteger(at.b));
        ++sp;
        break;
      case Op::refOuter:
        *sp = runtime_.heap().make<ReferenceObject>(ReferenceObject::To::slot, frame->function->environment,
                                                    Value::ofInteger(at.b));
        ++sp;
        break;
      case Op::refGlobal:
        *sp = runtime_.heap().make<ReferenceObject>(ReferenceObject::To::global, constants[at.b], Value());
        ++sp;
        break;
      case Op::refMember:
        member(at.b);
        *sp =
            runtime_.heap().make<ReferenceObject>(ReferenceObject::To::member, *frame->callee, Value::ofInteger(at.b));
        ++sp;
        break;
      case Op::refProperty:
        sp[-1] = runtime_.heap().make<ReferenceObject>(ReferenceObject::To::property, sp[-1], constants[at.b]);
        break;
      case Op::refIndex:
        sp[-2] = runtime_.heap().make<ReferenceObject>(ReferenceObject::To::element, sp[-2], sp[-1]);
        --sp;
        break;
      case Op::dereference:
        sp[-1] = readReference(sp[-1]);
        break;
      case Op::assignThrough:
        writeReference(sp[-2], sp[-1]);
        sp[-2] = sp[-1];
        --sp;
        break;

      case Op::add:
        sp[-2] = add(runtime_, sp[-2], sp[-1]);
        --sp;
        break;
      case Op::subtract:
        sp[-2] = subtract(runtime_, sp[-2], sp[-1]);
        --sp;
        break;
      case Op::multiply:
        sp[-2] = multiply(runtime_, sp[-2], sp[-1]);
        --sp;
        break;
      case Op::divide:
        sp[-2] = arithmetic(runtime_, BinaryOperator::divide, sp[-2], sp[-1]);
        --sp;
        break;
      case Op::power:
        sp[-2] = arithmetic(runtime_, BinaryOperator::power, sp[-2], sp[-1]);
        --sp;
        break;
      case Op::compare:
        sp[-2] = Value::ofBoolean(compare(runtime_, static_cast<BinaryOperator>(at.a), sp[-2], sp[-1]));
        --sp;
        break;
      case Op::addInteger:
        sp[-1] = static_cast<BinaryOperator>(at.a) == BinaryOperator::add
                     ? add(runtime_, sp[-1], Value::ofInteger(at.b))
                     : subtract(runtime_, sp[-1], Value::ofInteger(at.b));
        break;
      case Op::binaryLocal: {
        const std::int32_t index = (pc++)->b;
        const Value &left = locals[at.b], &right = index >= 0 ? locals[index] : constants[~index];
        switch (static_cast<BinaryOperator>(at.a)) {
          case BinaryOperator::add:
            *sp = add(runtime_, left, right);
            break;
          case BinaryOperator::subtract:
            *sp = subtract(runtime_, left, right);
            break;
          default:
            *sp = multiply(runtime_, left, right);
            break;
        }
        ++sp;
        break;
      }
      case Op::compareLocalJump: {
        const Instruction& operands = *pc++;
        const Value& right = operands.b >= 0 ? locals[operands.b] : constants[~operands.b];
        if (!compare(runtime_, static_cast<BinaryOperator>(at.a), locals[operands.a], right)) pc = target(at.b);
        break;
      }
      case Op::operand:  // read by the instruction before it
        break;
      case Op::negate:
        sp[-1] = negate(sp[-1]);
        break;
      case Op::logicalNot:
        sp[-1] = Value::ofBoolean(!slowTest(sp[-1], Test::notOperand));
        break;
      case Op::convert:
        sp[-2] = convert(runtime_, sp[-2], sp[-1]);
        --sp;
        break;

      case Op::jump:
        pc = target(at.b);
        break;
      case Op::loopJump:
        step();
        pc = target(at.b);
        break;
      case Op::jumpIfNot:
        if (!(sp[-1].isBoolean() ? sp[-1].b : slowTest(sp[-1], static_cast<Test>(at.a)))) pc = target(at.b);
        --sp;
        break;
      case Op::andJump:
      case Op::orJump:
        if (slowTest(sp[-1], static_cast<Test>(at.a)) == (at.op == Op::orJump)) {  // decided: the operand is the value
          pc = target(at.b);
          ++sp;
        }
        --sp;
        break;
      case Op::checkBoolean:
        slowTest(sp[-1], static_cast<Test>(at.a));
        break;
      case Op::compareJump:
        if (!compare(runtime_, static_cast<BinaryOperator>(at.a), sp[-2], sp[-1])) pc = target(at.b);
        sp -= 2;
        break;
      case Op::caseTest:
        sp[-1] = Value::ofBoolean(equal(runtime_, sp[-2], sp[-1]));
        break;
      case Op::jumpIfSupplied:
        if (!(--sp)->isUnsupplied()) pc = target(at.b);
        break;

      case Op::call:
        invoke(at.a, {}) ? reload() : void(sp = sp_);
        break;
      case Op::callKeywords:
        invoke(at.a, frame->code->keywordLists[static_cast<std::size_t>(at.b)]) ? reload() : void(sp = sp_);
        break;
      case Op::callMethod:
        invokeMethod(name(at.b), at.a, {}) ? reload() : void(sp = sp_);
        break;
      case Op::callMethodKeywords: {
        const std::span<NameObject* const> list = frame->code->keywordLists[static_cast<std::size_t>(at.b)];
        invokeMethod(list[0], at.a, list.subspan(1)) ? reload() : void(sp = sp_);
        break;
      }
      case Op::returnValue: {
        frame->callee->copyFrom(sp[-1]);
        sp_ = frame->callee + 1;
        frames_.pop_back();
        if (frames_.size() == entry) return sp_[-1];
        ++frames_.back().pc;
        reload();
        break;
      }

      case Op::makeArray:
        makeArray(at.a);
        sp = sp_;
        break;
      case Op::makeBitArray:
        *sp = runtime_.heap().make<BitArrayObject>();
        ++sp;
        break;
      case Op::addBit:
        addBits(false);
        --sp;
        break;
      case Op::addBits:
        addBits(true);
        sp -= 2;
        break;
      case Op::makePoint:
        makePoint(at.a);
        sp = sp_;
        break;
      case Op::makeFunction:
        makeFunction(static_cast<CodeObject*>(constants[at.b].o));
        sp = sp_;
        break;
      case Op::makeStruct:
        makeStruct(*static_cast<StructObject*>(constants[at.b].o), at.a);
        sp = sp_;
        break;
      case Op::makeDefinition:
        *sp++ = constants[at.b];
        break;
      case Op::path:
        path(*static_cast<StringObject*>(constants[at.b].o));
        sp = sp_;
        break;

      case Op::forPrepare:
        forPrepare(locals + at.a);
        sp -= 3;
        break;
      case Op::forTest:
        if (!forContinues(locals + at.a)) pc = target(at.b);
        locals[at.a + 3] = locals[at.a];
        break;
      case Op::forStep:
        if (forStep(locals + at.a)) pc = target(at.b);
        break;
      case Op::eachPrepare:
        eachPrepare(locals + at.a);
        --sp;
        break;
      case Op::eachNext:
        if (!eachNext(locals + at.a)) pc = target(at.b);
        break;
      case Op::eachNextJump:
        if (eachNext(locals + at.a)) pc = target(at.b);
        break;
      case Op::collect:
        collect(locals[at.b], sp[-1]);
        --sp;
        break;

      case Op::pushTry:
        handlers_.push_back({frames_.size() - 1, at.a, contexts_.size(), caught_.size(), at.b});
        break;
      case Op::popTry:
        handlers_.pop_back();
        break;
      case Op::endCatch:
        caught_.pop_back();
        break;
      case Op::pushContext:
        pushContext(static_cast<ContextKind>(at.a), sp[-1]);
        --sp;
        break;
      case Op::popContext:
        popContext();
        break;
      case Op::setTime:
        runtime_.host().setTime(toTicks(runtime_, sp[-1]));
        break;
      case Op::fail:
        throwRuntimeError(std::u16string(static_cast<StringObject*>(constants[at.b].o)->text()));
      case Op::lastResult:
        *sp++ = runtime_.lastResult;
        break;
    }
  }
}

}  // namespace hostkit::script
