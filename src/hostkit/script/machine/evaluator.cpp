// Entering and leaving the evaluator, and what happens to errors.
#include "hostkit/script/machine/evaluator.h"

#include <algorithm>
#include <limits>
#include <new>

#include "hostkit/script/machine/port.h"
#include "hostkit/script/machine/printing.h"

namespace hostkit::script {
namespace {

constexpr std::size_t kStackValues = 400'000;

// For each stretch that the host starts.
std::uint64_t stepLimit(const Runtime& runtime) {
  const std::uint64_t limit = runtime.options().stepLimit;
  return limit > 0 ? limit : std::numeric_limits<std::uint64_t>::max();
}

// Where the native stack stands: an address just below the caller's frame.
[[gnu::noinline]] std::uintptr_t stackPosition() {
  return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
}

}  // namespace

// How everything stood when a stretch began.
struct Evaluator::Mark {
  std::uintptr_t position = 0;  // in the native stack, which grows to lower addresses
  Value* sp = nullptr;
  std::size_t frames = 0, handlers = 0, contexts = 0, caught = 0, roots = 0, files = 0;
  int nested = 0;
  PortMark port;
};

Evaluator::Stretch::Stretch(Evaluator& evaluator) : evaluator_(evaluator) {
  const std::uintptr_t position = stackPosition();
  evaluator.dropAbandoned(position);
  before_ = evaluator.stretches_.size();
  evaluator.stretches_.push_back({position, evaluator.sp_, evaluator.frames_.size(), evaluator.handlers_.size(),
                                  evaluator.contexts_.size(), evaluator.caught_.size(),
                                  evaluator.runtime_.heap().roots(), evaluator.runtime_.runningFiles.size(),
                                  evaluator.nested_, evaluator.runtime_.port().mark()});
}

Evaluator::Stretch::~Stretch() { evaluator_.endStretches(before_); }

// All but the first `count`, the innermost first.
void Evaluator::endStretches(std::size_t count) {
  while (stretches_.size() > count) {
    const Mark mark = stretches_.back();
    stretches_.pop_back();
    while (contexts_.size() > mark.contexts) popContext();
    handlers_.resize(mark.handlers);
    caught_.erase(caught_.begin() + static_cast<std::ptrdiff_t>(mark.caught), caught_.end());
    frames_.resize(mark.frames);
    sp_ = mark.sp;
    nested_ = mark.nested;
    runtime_.heap().dropRoots(mark.roots);
    runtime_.runningFiles.resize(mark.files);
    runtime_.port().restore(mark.port);
  }
}

// A stretch that still runs began higher up in the stack than the one that begins now.
void Evaluator::dropAbandoned(std::uintptr_t position) {
  std::size_t running = stretches_.size();
  while (running > 0 && stretches_[running - 1].position <= position) --running;
  endStretches(running);
}

// One stay in the evaluator.
class Evaluator::Activation {
 public:
  explicit Activation(Evaluator& evaluator) : stretch_(evaluator), frames_(evaluator.frames_.size()) {
    if (evaluator.nested_ >= kMaxNested) throwRuntimeError(u"Stack overflow: evaluations nest too deep");
    if (evaluator.nested_++ == 0) evaluator.steps_ = stepLimit(evaluator.runtime_);
  }
  std::size_t frames() const { return frames_; }

 private:
  const Stretch stretch_;
  std::size_t frames_;
};

Evaluator::Evaluator(Runtime& runtime)
    : runtime_(runtime),
      stack_(static_cast<Value*>(std::calloc(kStackValues, sizeof(Value)))),
      sp_(stack_.get()),
      end_(stack_.get() + kStackValues),
      steps_(stepLimit(runtime)) {
  if (!stack_) throw std::bad_alloc();
  frames_.reserve(kMaxFrames);
  runtime.heap().addRoots([this](Tracer& tracer) { traceRoots(tracer); });
}

Evaluator::~Evaluator() = default;

void Evaluator::traceRoots(Tracer& tracer) const {
  for (const Value* each = stack_.get(); each != sp_; ++each) tracer.mark(*each);
  for (const Frame& frame : frames_) {
    tracer.mark(frame.function);
    tracer.mark(frame.code);
    tracer.mark(frame.environment);
  }
}

Value Evaluator::run(CodeObject* code) {
  const Activation activation(*this);
  Value* callee = sp_;
  *sp_++ = code;
  enterFrame(nullptr, code, callee, 0);
  return execute(activation.frames());
}

Value Evaluator::call(const Value& callee, std::span<const Value> arguments, std::span<NameObject* const> keywordNames,
                      std::span<const Value> keywordValues) {
  const Activation activation(*this);
  if (end_ - sp_ < static_cast<std::ptrdiff_t>(arguments.size() + keywordValues.size() + 16))
    throwRuntimeError(u"Stack overflow: too many arguments");
  *sp_++ = callee;
  sp_ = std::copy(arguments.begin(), arguments.end(), sp_);
  sp_ = std::copy(keywordValues.begin(), keywordValues.end(), sp_);
  if (invoke(arguments.size(), keywordNames)) return execute(activation.frames());
  return sp_[-1];
}

Value Evaluator::callMethod(FunctionObject* method, const Value& self) {
  const Activation activation(*this);
  *sp_++ = self;
  enter(method, 0, {});
  return execute(activation.frames());
}

// Errors of natives come as whatever their side throws; scripts meet ScriptErrors only.
Value Evaluator::execute(std::size_t entry) {
  for (;;) {
    try {
      return dispatch(entry);
    } catch (ScriptError& error) {
      if (!handle(error, entry)) throw;
    } catch (const hostsdk::MAXScriptException& native) {
      ScriptError error(printedText(native));
      if (!handle(error, entry)) throw error;
    } catch (const hostsdk::MAXException& native) {
      ScriptError error(u"-- Runtime error: " + native.message());
      if (!handle(error, entry)) throw error;
    } catch (const std::bad_alloc&) {
      ScriptError error(u"-- Runtime error: Out of memory");
      if (!handle(error, entry)) throw error;
    }
  }
}

// Takes the error to the innermost catch of this stay, if there is one.
bool Evaluator::handle(ScriptError& error, std::size_t entry) {
  complete(error);
  if (handlers_.empty() || handlers_.back().frame < entry) return false;
  const Handler handler = handlers_.back();
  handlers_.pop_back();
  frames_.resize(handler.frame + 1);
  while (contexts_.size() > handler.contexts) popContext();
  Frame& frame = frames_.back();
  sp_ = frame.operands + handler.height;
  frame.pc = frame.code->instructions.data() + handler.target;
  caught_.erase(caught_.begin() + static_cast<std::ptrdiff_t>(handler.caught), caught_.end());
  caught_.push_back(std::move(error));
  return true;
}

// Where the error was raised, through which calls, and, when nobody will catch it, with which variables.
void Evaluator::complete(ScriptError& error) const {
  if (!error.place().source) error.setPlace(place());
  if (error.stack().empty() && !error.isSyntax()) error.stack() = stackLevels(handlers_.empty());
}

Place Evaluator::place() const {
  if (frames_.empty()) return {};
  const Frame& frame = frames_.back();
  return frame.code->placeOf(static_cast<std::size_t>(frame.pc - frame.code->instructions.data()));
}

std::vector<StackLevel> Evaluator::stackLevels(bool withVariables) const {
  constexpr std::size_t kMaxShown = 20, kMaxVariables = 30;
  std::vector<StackLevel> levels;
  for (auto frame = frames_.rbegin(); frame != frames_.rend() && levels.size() < kMaxShown; ++frame) {
    const CodeObject& code = *frame->code;
    StackLevel level;
    level.what = code.name.empty() ? u"anonymous codeblock" : code.name + u"()";
    level.place = code.placeOf(static_cast<std::size_t>(frame->pc - code.instructions.data()));
    for (std::size_t i = 0; withVariables && i < code.slots && level.variables.size() < kMaxVariables; ++i)
      if (!code.slotNames[i].empty())
        level.variables.push_back(code.slotNames[i] + u": " + printed(runtime_, frame->locals[i]).substr(0, 100));
    levels.push_back(std::move(level));
  }
  return levels;
}

void Evaluator::step() {
  if (--steps_ == 0) {
    steps_ = 1;
    throwRuntimeError(u"The script ran longer than it may");
  }
}

}  // namespace hostkit::script
