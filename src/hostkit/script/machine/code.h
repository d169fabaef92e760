// Bytecode: compiled scripts and everything that can be called.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "hostkit/script/machine/objects.h"
#include "hostkit/script/syntax/source.h"

namespace hostkit::script {

class Runtime;
struct StructObject;

// The instructions of the evaluator. It is a stack machine: operands are pushed, results take their place.
enum class Op : std::uint16_t {
  // Pushing and dropping. b: constant or number. text and tuple push a copy of their constant, for scripts may change
  // it.
  constant,
  text,
  tuple,
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
  endCatch,
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

// A global variable. Host globals read and write through the host and hold no value here.
struct GlobalObject : Object {
  static constexpr Kind kKind = Kind::global;
  explicit GlobalObject(NameObject* variableName) : Object(kKind), name(variableName) {}
  void trace(Tracer& tracer) const override {
    tracer.mark(name);
    tracer.mark(value);
  }
  NameObject* name;
  Value value;
  bool isConstant = false;  // assigning is an error
  bool isHost = false;
  Value (*compute)(Runtime&) = nullptr;  // reading calls this
};

// A piece of compiled script: a top-level expression, a function's body, or a whole stream.
struct CodeObject : Object {
  static constexpr Kind kKind = Kind::code;
  CodeObject() : Object(kKind) {}
  void trace(Tracer& tracer) const override;
  std::size_t footprint() const override { return 256 + instructions.size() * 40 + constants.size() * 16; }
  Place placeOf(std::size_t instruction) const;

  std::u16string name;  // of the function; "" for an anonymous block
  std::u16string file;  // whose whole content this is; "" for everything else
  std::vector<Instruction> instructions;
  struct Position {
    std::uint32_t source = 0, offset = 0;
  };
  std::vector<Position> positions;  // parallel to the instructions
  std::vector<std::shared_ptr<const Source>> sources;
  std::vector<Value> constants;  // literals, names, globals, nested code
  std::vector<std::vector<NameObject*>> keywordLists;

  std::size_t positional = 0;             // parameters
  std::vector<NameObject*> keywords;      // keyword parameters; their slots follow the positional ones
  std::size_t stackRoom = 0;              // values on the stack beyond the slots, at most
  std::size_t slots = 0;                  // parameters and locals
  std::vector<std::u16string> slotNames;  // "" for hidden ones
  bool isMapped = false;
  bool keepsLocals = false;  // functions made here use the locals: they live in an environment
};

// Locals of a file's block that outlive its run because functions made there use them.
struct EnvironmentObject : Object {
  static constexpr Kind kKind = Kind::environment;
  explicit EnvironmentObject(std::size_t count) : Object(kKind), slots(count) {}
  void trace(Tracer& tracer) const override { tracer.markAll(slots); }
  std::vector<Value> slots;
};

// A local that a reference was taken of.
struct CellObject : Object {
  static constexpr Kind kKind = Kind::cell;
  explicit CellObject(Value initial) : Object(kKind), value(initial) {}
  void trace(Tracer& tracer) const override { tracer.mark(value); }
  Value value;
};

struct FunctionObject : Object {
  static constexpr Kind kKind = Kind::function;
  FunctionObject(CodeObject* body, EnvironmentObject* locals) : Object(kKind), code(body), environment(locals) {}
  void trace(Tracer& tracer) const override;
  CodeObject* code;
  EnvironmentObject* environment;  // null: uses no outer locals
  StructObject* owner = nullptr;   // of a method
};

// What a built-in function is called with. All of it stays reachable during the call.
struct Call {
  Runtime& runtime;
  std::span<const Value> arguments;
  std::span<const Value> keywordValues;
  std::span<NameObject* const> keywordNames;

  const Value& operator[](std::size_t index) const { return arguments[index]; }
  std::size_t count() const { return arguments.size(); }
  // Unsupplied when the keyword was not given. The name in lower case.
  Value keyword(std::u16string_view name) const;
};
using BuiltinFunction = Value (*)(const Call& call);

// One row of the table of built-in functions.
struct BuiltinEntry {
  std::u16string_view name;
  int minimum;  // arguments
  int maximum;  // -1: any number
  BuiltinFunction function;
  bool isMapped = false;  // a collection as first argument: once for each element
};

struct BuiltinObject : Object {
  static constexpr Kind kKind = Kind::builtin;
  explicit BuiltinObject(const BuiltinEntry& row) : Object(kKind), entry(row) {}
  const BuiltinEntry& entry;
};

// A method together with the value it was taken from.
struct BoundMethodObject : Object {
  static constexpr Kind kKind = Kind::boundMethod;
  BoundMethodObject(Value owner, Value function, NameObject* method)
      : Object(kKind), self(owner), callee(function), name(method) {}
  void trace(Tracer& tracer) const override {
    tracer.mark(self);
    tracer.mark(callee);
    tracer.mark(name);
  }
  Value self, callee;  // callee undefined: a function of the host object `self` called `name`
  NameObject* name;
};

}  // namespace hostkit::script
