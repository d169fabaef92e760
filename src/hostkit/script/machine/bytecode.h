// The instructions of the evaluator. It is a stack machine: operands are pushed, results take their place.
#pragma once

#include <cstdint>

namespace hostkit::script {

enum class Op : std::uint16_t {
  // Pushing and dropping. b: constant or number. text pushes a copy of its constant, for scripts may change it.
  constant,
  text,
  undefined,
  ok,
  integer,
  pop,
  duplicate,
  duplicateTwo,
  // Back to a: the height of the frame's stack; keepTop carries the top value along.
  cutTo,
  cutKeepTop,
  // Variables. b: slot or constant. The set forms leave the value on the stack. A boxed slot holds a cell, a reference
  // (by-reference parameters), or as yet neither.
  getLocal,
  setLocal,
  storeLocal,
  getBoxed,
  setBoxed,
  makeCell,
  getOuter,
  setOuter,
  getGlobal,
  setGlobal,
  getMember,
  setMember,
  self,
  currentFunction,
  clearLocals,
  // Of values. b: constant with the name
  getProperty,
  setProperty,
  getIndex,
  setIndex,
  // References. b as for variables
  refBoxed,
  refSlot,
  refOuter,
  refGlobal,
  refMember,
  refProperty,
  refIndex,
  dereference,
  assignThrough,
  // Operators. a: the BinaryOperator
  add,
  subtract,
  multiply,
  divide,
  power,
  compare,
  negate,
  logicalNot,
  convert,
  // Operators with a small integer on the right. a: the BinaryOperator, b: the integer
  addInteger,
  // Operators on a local and a local or constant. binaryLocal: a: the BinaryOperator, b: the left slot.
  // compareLocalJump: a: the BinaryOperator, b: target. The operand that follows holds the rest. operand: a: the left
  // slot (compareLocalJump), b: the right slot, or the complement of the right constant.
  binaryLocal,
  compareLocalJump,
  operand,
  // Jumps. b: target
  jump,
  loopJump,
  jumpIfNot,
  andJump,
  orJump,
  checkBoolean,
  compareJump,
  caseTest,
  jumpIfSupplied,
  // Calls. a: positional arguments, b: constant or keyword list
  call,
  callKeywords,
  callMethod,
  callMethodKeywords,
  returnValue,
  // Making. a or b: how many
  makeArray,
  makeBitArray,
  addBit,
  addBits,
  makePoint,
  makeFunction,
  makeStruct,
  makeDefinition,
  path,
  // Loops. a: first of the hidden slots, b: target
  forPrepare,
  forTest,
  forStep,
  eachPrepare,
  eachNext,
  eachNextJump,
  collect,
  // Regions. b: target or kind
  pushTry,
  popTry,
  pushContext,
  popContext,
  setTime,
  // Refusals. b: constant with the message
  fail,
  lastResult,
};

struct Instruction {
  Op op;
  std::uint16_t a = 0;
  std::int32_t b = 0;
};

// What jumpIfNot and its like complain about when the operand is no boolean.
enum class Test : std::uint16_t { ifTest, whileTest, whereTest, andOperand, orOperand, notOperand, contextOperand };

// Contexts that change something while they last.
enum class ContextKind : std::uint16_t { atTime, printAllElements };

}  // namespace hostkit::script
