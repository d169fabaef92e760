#include "hostkit/script/machine/runtime.h"

#include <filesystem>

#include "hostkit/script/machine/classes.h"
#include "hostkit/script/machine/compiler.h"
#include "hostkit/script/machine/evaluator.h"
#include "hostkit/script/machine/folders.h"
#include "hostkit/script/machine/host_values.h"
#include "hostkit/script/machine/port.h"
#include "hostkit/script/syntax/parser.h"
#include "hostkit/script/syntax/text.h"
#include "platform/environment.h"
#include "platform/files.h"

namespace hostkit::script {
namespace {

bool stressWanted(const EngineOptions& options) {
  return options.collectAlways || platform::environmentVariable(u"CORVANTIS_GC_STRESS") == u"1";
}

}  // namespace

RunningFile::RunningFile(Runtime& runtime, const std::u16string& path)
    : files_(runtime.runningFiles), before_(runtime.runningFiles.size()) {
  if (!path.empty()) files_.push_back(path);
}
RunningFile::~RunningFile() {
  if (files_.size() > before_) files_.resize(before_);
}

Runtime::Runtime(HostBindings& host, EngineOptions options, const Library& library)
    : host_(host), options_(std::move(options)), heap_(stressWanted(options_), options_.heapLimit) {
  if (!options_.listener) options_.listener = [](std::u16string_view) {};
  heap_.addRoots([this](Tracer& tracer) { traceRoots(tracer); });
  classes_ = std::make_unique<Classes>(*this, library.classes);
  evaluator_ = std::make_unique<Evaluator>(*this);
  port_ = std::make_unique<Port>(*this);
  library.defineConstants(*this);
  for (const auto& family : library.functions) defineFunctions(family);
  defineHostGlobals();
  heap_.start();
}

Runtime::~Runtime() = default;

void Runtime::traceRoots(Tracer& tracer) const {
  for (const auto& [text, name] : names_) tracer.mark(name);
  for (const auto& [name, global] : globals_) tracer.mark(global);
  if (classes_)
    for (const auto& [name, type] : classes_->byName) tracer.mark(type);
  tracer.mark(lastResult);
  tracer.mark(callbackParameter);
  for (const CallbackScript& callback : callbacks) {
    tracer.mark(callback.id);
    tracer.mark(callback.script);
  }
}

void Runtime::defineFunctions(std::span<const BuiltinEntry> family) {
  for (const BuiltinEntry& entry : family) {
    const std::size_t dot = entry.name.find(u'.');
    const Root made(heap_, heap_.make<BuiltinObject>(entry));
    if (dot == std::u16string_view::npos) {
      addGlobal(name(entry.name))->value = made.value;
      continue;
    }
    GlobalObject* holder = addGlobal(name(entry.name.substr(0, dot)));
    if (!as<NamespaceObject>(holder->value)) holder->value = heap_.make<NamespaceObject>(holder->name);
    as<NamespaceObject>(holder->value)->functions[name(entry.name.substr(dot + 1))] = as<BuiltinObject>(made.value);
  }
}

// What the host offers: values that it keeps, and functions.
void Runtime::defineHostGlobals() {
  for (const auto& [type, super] : host_.classes()) classes_->ofName(*this, type, super);
  for (const auto& property : host_.propertyNames()) {
    GlobalObject* global = addGlobal(name(property));
    global->isHost = true;
    global->value = Value();
  }
  const auto functions = host_.functionNames();
  if (functions.empty()) return;
  const Root host(heap_, heap_.make<HostValueObject>(std::shared_ptr<HostObject>(&host_, [](HostObject*) {})));
  for (const auto& function : functions) {
    GlobalObject* global = addGlobal(name(function));
    global->value = heap_.make<BoundMethodObject>(host.value, Value(), global->name);
  }
}

NameObject* Runtime::name(std::u16string_view text) {
  std::u16string folded = fold(text);
  const auto found = names_.find(folded);
  if (found != names_.end()) {
    NameObject* known = found->second;
    if (!known->isSpelled && heap_.isStarted()) {
      known->text = text;
      known->isSpelled = true;
    }
    return known;
  }
  auto* made = heap_.make<NameObject>(std::u16string(text), folded);
  made->isSpelled = heap_.isStarted();
  names_.emplace(std::move(folded), made);
  return made;
}

StringObject* Runtime::newString(std::u16string_view text) {
  if (text.size() > kMaxStringLength) throwRuntimeError(u"String too long");
  return heap_.make<StringObject>(text);
}

StringObject* Runtime::joined(const StringObject& head, std::u16string_view tail) {
  if (head.length() + tail.size() > kMaxStringLength) throwRuntimeError(u"String too long");
  return heap_.make<StringObject>(&head, tail);
}

GlobalObject* Runtime::findGlobal(const NameObject* name) {
  const auto found = globals_.find(name);
  return found == globals_.end() ? nullptr : found->second;
}

std::vector<const GlobalObject*> Runtime::globals() const {
  std::vector<const GlobalObject*> all;
  for (const auto& [name, global] : globals_) all.push_back(global);
  return all;
}

GlobalObject* Runtime::addGlobal(NameObject* name) {
  if (GlobalObject* found = findGlobal(name)) return found;
  auto* made = heap_.make<GlobalObject>(name);
  globals_.emplace(name, made);
  return made;
}

void Runtime::setConstant(std::u16string_view text, Value value) {
  const Root kept(heap_, value);
  GlobalObject* global = addGlobal(name(text));
  global->value = value;
  global->isConstant = true;
}

Value Runtime::readGlobal(GlobalObject& global) {
  if (global.compute) return global.compute(*this);
  if (const auto* tuple = global.isConstant ? as<TupleObject>(global.value) : nullptr)
    return heap_.make<TupleObject>(tuple->tuple, tuple->v);
  if (!global.isHost) return global.value;
  const AllocationFrame frame(*port_);
  const auto found = host_.get(global.name->folded);
  return found ? fromHost(*this, *found) : Value();
}

void Runtime::writeGlobal(GlobalObject& global, const Value& value) {
  if (global.isConstant) throwRuntimeError(u"Cannot assign to constant: " + global.name->text);
  if (!global.isHost) {
    global.value = value;
  } else if (!setOfHost(*this, host_, *global.name, value)) {
    throwRuntimeError(u"Cannot assign to read-only variable: " + global.name->text);
  }
}

void Runtime::print(std::u16string_view text) {
  hostsdk::CharStream* out = port_->thread_locals().currentStdout;
  if (out) {
    out->puts(text);
  } else {
    report(text);
  }
}

std::shared_ptr<const Source> Runtime::findScript(const std::u16string& given) const {
  const std::u16string path = expandedPath(options_, given);
  if (auto found = readSource(path)) return found;
  std::vector<std::u16string> folders = options_.scriptFolders;
  if (!runningFiles.empty()) {
    const std::size_t end = runningFiles.back().find_last_of(u"\\/");
    if (end != std::u16string::npos) folders.insert(folders.begin(), runningFiles.back().substr(0, end));
  }
  for (std::u16string& folder : folders)
    if (auto found = readSource(folder.append(u"\\").append(path))) return found;
  return nullptr;
}

SourceFinder Runtime::scriptFinder() const {
  return [this](const std::u16string& path) { return findScript(path); };
}

Value Runtime::runSource(const std::shared_ptr<const Source>& source) {
  const RunningFile running(*this, source->name);
  ScriptParser parser(source, scriptFinder());
  Root result(heap_, Value::ok());
  for (;;) {
    Tree tree;
    Node* expression = parser.nextExpression(tree);
    if (!expression) return result.value;
    const Root code(heap_, Compiler::compile(*this, {&expression, 1}));
    result.value = evaluator_->run(static_cast<CodeObject*>(code.value.o));
  }
}

}  // namespace hostkit::script
