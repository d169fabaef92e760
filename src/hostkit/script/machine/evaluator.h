// Runs compiled code. Scripts that call scripts use no native stack; native code that calls back does, to a limit.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <vector>

#include "hostkit/script/machine/runtime.h"
#include "hostkit/script/syntax/syntax_tree.h"

namespace hostkit::script {

class Evaluator {
 public:
  // Script calls that may nest; past it "-- Runtime error: Stack overflow: functions call each other too deep".
  static constexpr std::size_t kMaxFrames = 8000;
  // Evaluations that native code may start inside another (execute, fileIn, callbacks of sort, mapped functions).
  static constexpr int kMaxNested = 160;

  // A stretch of native code that runs scripts or calls natives for them. When it ends, however it ends, the evaluator,
  // the collector's roots and the host port stand as they stood when it began. A stretch whose native stack was left
  // without unwinding, as a trapped fault does, is ended by the next one that begins.
  class Stretch {
   public:
    explicit Stretch(Evaluator& evaluator);
    ~Stretch();
    Stretch(const Stretch&) = delete;
    Stretch& operator=(const Stretch&) = delete;

   private:
    Evaluator& evaluator_;
    std::size_t before_;
  };

  explicit Evaluator(Runtime& runtime);
  ~Evaluator();
  Evaluator(const Evaluator&) = delete;
  Evaluator& operator=(const Evaluator&) = delete;

  Value run(CodeObject* code);
  Value call(const Value& callee, std::span<const Value> arguments, std::span<NameObject* const> keywordNames = {},
             std::span<const Value> keywordValues = {});
  // A method of a structure, with its instance.
  Value callMethod(FunctionObject* method, const Value& self);

  // The error that the innermost catch is about; null outside.
  const ScriptError* currentError() const { return caught_.empty() ? nullptr : &caught_.back(); }
  // Where the script stands; empty when none runs.
  Place place() const;
  bool isRunning() const { return !frames_.empty(); }

 private:
  struct Frame {
    FunctionObject* function = nullptr;  // null: a file's own code
    CodeObject* code = nullptr;
    const Instruction* pc = nullptr;
    Value* callee = nullptr;  // the value called, or the instance for methods; locals and operands follow
    Value* locals = nullptr;
    Value* operands = nullptr;
    EnvironmentObject* environment = nullptr;  // what functions made here take along
  };
  struct Handler {
    std::size_t frame = 0, height = 0, contexts = 0, caught = 0;
    std::int32_t target = 0;
  };
  struct SavedContext {
    ContextKind kind = ContextKind::atTime;
    std::int32_t time = 0;
    bool printAll = false;
  };
  struct Mark;
  class Activation;

  void endStretches(std::size_t count);
  void dropAbandoned(std::uintptr_t position);

  // The loop
  Value execute(std::size_t entry);
  Value dispatch(std::size_t entry);
  void step();
  bool handle(ScriptError& error, std::size_t entry);
  void complete(ScriptError& error) const;
  std::vector<StackLevel> stackLevels(bool withVariables) const;
  void traceRoots(Tracer& tracer) const;

  // Calls. The callee and its arguments are on top of the stack; true when a frame was entered, else the result has
  // taken their place.
  bool invoke(std::size_t arguments, std::span<NameObject* const> keywords);
  bool invokeMethod(NameObject* name, std::size_t arguments, std::span<NameObject* const> keywords);
  void enter(FunctionObject* function, std::size_t arguments, std::span<NameObject* const> keywords);
  void arrangeKeywords(const CodeObject& code, Value* first, std::span<NameObject* const> keywords);
  void enterFrame(FunctionObject* function, CodeObject* code, Value* callee, std::size_t given);
  void leaveWith(Value* callee, const Value& result) {
    *callee = result;
    sp_ = callee + 1;
  }
  Value callBuiltin(const BuiltinEntry& entry, Value* first, std::size_t arguments,
                    std::span<NameObject* const> keywords);
  bool mapOver(std::size_t arguments, std::span<NameObject* const> keywords);
  Value construct(StructObject& structure, Value* first, std::size_t arguments, std::span<NameObject* const> keywords);
  bool mayAccessPrivate(const StructObject& structure) const;

  // Variables and references
  Value readBoxed(const Value& slot);
  void writeBoxed(Value& slot, const Value& value);
  Value referenceToBoxed(Value& slot);
  Value readReference(const Value& reference);
  void writeReference(const Value& reference, const Value& value);
  Value& member(std::int32_t field);
  const Value& outer(std::int32_t slot) const;

  // Instructions that are more than a line
  void makeArray(std::size_t count);
  void makePoint(std::size_t count);
  void addBits(bool range);
  void makeFunction(CodeObject* code);
  void makeStruct(const StructObject& shape, std::size_t functions);
  void path(const StringObject& text);
  bool slowTest(const Value& value, Test test);
  void forPrepare(Value* slots);
  bool forStep(Value* slots);
  static bool forContinues(const Value* slots);
  void eachPrepare(Value* slots);
  bool eachNext(Value* slots);
  void collect(const Value& array, const Value& value);
  void pushContext(ContextKind kind, const Value& operand);
  void popContext();
  Value negate(const Value& operand);

  Runtime& runtime_;
  struct FreeStack {
    void operator()(Value* values) const { std::free(values); }
  };
  // All zero is all undefined: memory that no script reaches is never touched.
  std::unique_ptr<Value[], FreeStack> stack_;
  Value* sp_;  // one past the top
  Value* end_;
  std::vector<Frame> frames_;
  std::vector<Handler> handlers_;
  std::vector<SavedContext> contexts_;
  std::vector<Mark> stretches_;
  std::vector<ScriptError> caught_;  // by the catches that run, the innermost last
  int nested_ = 0;
  std::uint64_t steps_;
};

}  // namespace hostkit::script
