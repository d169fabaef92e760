// Turns syntax trees into code, with every variable resolved to a slot, a member or a global.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "hostkit/script/machine/runtime.h"
#include "hostkit/script/machine/structures.h"
#include "hostkit/script/syntax/syntax_tree.h"

namespace hostkit::script {

class Compiler {
 public:
  // The expressions of one file or text, in order, as code whose value is the last one's. Globals that they mention are
  // made. Throws ScriptError (isSyntax) "-- Compile error: ...". Reachable only through what the caller does with it.
  static CodeObject* compile(Runtime& runtime, std::span<Node* const> expressions);

 private:
  struct Variable {
    enum class Kind : std::uint8_t { slot, boxed, outer, member, method, global, self, ownFunction };
    Kind kind = Kind::slot;
    NameObject* name = nullptr;
    std::int32_t slot = 0;  // or the field
    GlobalObject* global = nullptr;
  };
  struct Scope {
    bool takesImplicit = false;  // undeclared names become locals here
    std::vector<Variable> variables;
    std::int32_t firstImplicit = -1, implicitCount = 0;
  };
  enum class Region : std::uint8_t { attempt, handler, context };
  struct Loop {
    bool wantsValue = false;
    std::int32_t height = 0;
    std::size_t regions = 0;
    std::vector<std::size_t> exits, continues;  // jumps to be aimed
  };
  // What a loop hands to each of its rounds.
  struct RoundValue {
    std::int32_t slot = 0;  // where the loop keeps it
    Variable variable;      // as the body knows it
  };
  // What is being compiled: a function's body, or the file's own code (no outer).
  struct Unit {
    Unit(Runtime& runtime, Unit* enclosing);
    Root root;
    CodeObject* code;
    Unit* outer;
    const StructObject* members = nullptr;  // of the structure whose method this is
    NameObject* ownName = nullptr;
    std::set<std::u16string> referenced;  // locals that some & takes a reference of, in lower case
    std::vector<Scope> scopes;
    std::vector<Loop> loops;
    std::vector<Region> regions;
    std::int32_t height = 0;
    Place place;  // of what is being compiled
  };

  explicit Compiler(Runtime& runtime) : runtime_(runtime) {}

  // Emission. Each tells the index of the instruction.
  std::size_t emit(Op op, std::size_t a = 0, std::int32_t b = 0);
  std::size_t emitConstant(Op op, Value constant, std::size_t a = 0) { return emit(op, a, addConstant(constant)); }
  std::int32_t addConstant(Value constant);
  void aim(std::size_t jump) { code().instructions[jump].b = here(); }
  std::int32_t here() { return static_cast<std::int32_t>(code().instructions.size()); }
  void fail(std::u16string_view message, bool wanted);
  void push(Value constant, bool wanted);
  [[noreturn]] void compileError(const Place& place, std::u16string_view text);
  CodeObject& code() { return *unit_->code; }
  std::uint32_t sourceIndex(const Place& place);

  // Variables
  void findReferenced(const Node& node);
  bool isBoxed(const NameObject* name) const;
  std::int32_t newSlot(std::u16string_view name, std::size_t count = 1);
  Variable declare(NameObject* name);
  Variable declareImplicit(NameObject* name, Scope& scope);
  const Variable* findIn(const Unit& unit, const NameObject* name) const;
  Variable resolve(const WordNode& node);
  std::optional<Variable> resolveOuter(NameObject* name, const Place& place);
  Variable definitionTarget(NameObject* name, std::optional<bool> global);
  Variable globalVariable(NameObject* name);
  Scope* implicitScope();
  void load(const Variable& variable);
  void store(const Variable& variable, bool wanted);
  void takeReference(const Variable& variable, const Place& place);

  // Expressions. Leave one value on the stack when wanted, else nothing.
  void compile(const Node& node, bool wanted);
  void compileValue(const Node& node, bool wanted);
  void operand(const Node& node);
  void literal(const NumberNode& node);
  void block(const ListNode& node, bool wanted);
  void sequence(std::span<Node* const> items, bool wanted);
  void array(const ListNode& node);
  void bitArray(const BitArrayNode& node);
  void call(const CallNode& node);
  static bool isCallOf(const CallNode& node, std::u16string_view function);
  static std::u16string patternOf(const WordNode& literal);
  std::int32_t keywordList(NameObject* method, const CallNode& node);
  void reference(const UnaryNode& node);
  void binary(const BinaryNode& node);
  std::optional<std::int32_t> localSlot(const Node& node);
  std::optional<std::int32_t> simpleOperand(const Node& node);
  void emitOperator(BinaryOperator op);
  void logical(const LogicalNode& node);
  void convert(const ConvertNode& node);
  void assign(const AssignNode& node, bool wanted);
  void assignVariable(const AssignNode& node, bool wanted);
  void assignPlace(const AssignNode& node, bool wanted);
  void declareVariables(const DeclareNode& node, bool wanted);

  // Control
  void condition(const Node& test, Test kind, std::vector<std::size_t>& jumps);
  void ifThen(const IfNode& node, bool wanted);
  void whileLoop(const LoopNode& node, bool wanted);
  void doWhileLoop(const LoopNode& node, bool wanted);
  void forLoop(const ForNode& node, bool wanted);
  void forRounds(const ForNode& node, std::int32_t slots, std::int32_t collection);
  RoundValue roundValue(NameObject* name, std::int32_t slot);
  void renew(const RoundValue& value);
  void countRound(const RoundValue& counter);
  void openLoop(bool wanted);
  void closeLoop();
  void leave(const UnaryNode* exitNode);
  void leaveRegions(std::size_t downTo);
  void caseOf(const CaseNode& node, bool wanted);
  void tryCatch(const TryNode& node, bool wanted);
  void returnFrom(const UnaryNode& node);
  void context(const ContextNode& node, bool wanted);
  void openContext(const ContextPart& part);
  void setContext(const ContextNode& node, bool wanted);

  // Definitions
  void function(const FunctionNode& node, bool wanted);
  CodeObject* functionBody(const FunctionNode& node, const StructObject* members);
  void parameters(const FunctionNode& node);
  void makeFunction(CodeObject* body);
  void structure(const StructNode& node, bool wanted);
  StructObject* structTemplate(const StructNode& node);
  CodeObject* structInitializer(const StructNode& node, const StructObject& members);
  void definition(const DefinitionNode& node, bool wanted);

  Runtime& runtime_;
  Unit* unit_ = nullptr;
};

}  // namespace hostkit::script
