#include "hostkit/script/machine/port.h"

#include <algorithm>

namespace hostkit::script {

Port::Port(Runtime& runtime)
    : runtime_(runtime),
      undefined_(std::make_unique<ValueHandle>(*this, Value())),
      ok_(std::make_unique<ValueHandle>(*this, Value::ok())),
      true_(std::make_unique<ValueHandle>(*this, Value::ofBoolean(true))),
      false_(std::make_unique<ValueHandle>(*this, Value::ofBoolean(false))),
      listener_(std::make_unique<ListenerHandle>(*this, Value())) {
  threadLocals_.currentStdout = listener_.get();
  runtime.heap().addRoots([this](Tracer& tracer) { traceHandles(tracer); });
}

Port::~Port() = default;

template <class T>
T* Port::keep(std::unique_ptr<T> handle) {
  T* kept = handle.get();
  if (kept->value.isObject()) byObject_[kept->value.o] = kept;
  handles_.push_back(std::move(handle));
  frames_.back().push_back(kept);
  return kept;
}

hostsdk::Value* Port::publish(const Value& value) {
  if (value.isUndefined()) return undefined();
  if (value.tag == Tag::ok) return ok();
  if (value.isBoolean()) return boolean(value.b);
  if (value.isObject()) {
    const auto known = byObject_.find(value.o);
    if (known != byObject_.end()) {
      frames_.back().push_back(known->second);
      return known->second->published();
    }
    if (value.o->kind == Kind::array) return keep(std::make_unique<ArrayHandle>(*this, value));
    if (const auto* stream = as<TextStreamObject>(value); stream && !stream->isFile())
      return keep(std::make_unique<StringStreamHandle>(*this, value));
    if (value.o->kind == Kind::textStream) return keep(std::make_unique<FileStreamHandle>(*this, value));
  }
  return keep(std::make_unique<ValueHandle>(*this, value));
}

Value Port::unwrap(hostsdk::Value* value) {
  if (!value) return {};
  if (const auto* handle = dynamic_cast<Handle*>(value)) return handle->value;
  if (value->kind() == hostsdk::Value::Kind::boolean) return Value::ofBoolean(value->isTrue());
  if (value->kind() == hostsdk::Value::Kind::ok) return Value::ok();
  if (value->kind() == hostsdk::Value::Kind::undefined) return {};
  return runtime_.newString(value->text().value_or(u""));
}

// The permanent first frame stays.
void Port::pop_alloc_frame() {
  if (frames_.size() > 1) {
    frames_.pop_back();
  } else {
    frames_.back().clear();
  }
}

void Port::unlink(hostsdk::Value** slots) {
  const auto found =
      std::find_if(slots_.rbegin(), slots_.rend(), [&](const auto& linked) { return linked.first == slots; });
  if (found != slots_.rend()) slots_.erase(std::next(found).base());
}

PortMark Port::mark() const {
  return {frames_.size(), slots_.size(), threadLocals_.currentStdout, threadLocals_.evaluationLevel,
          threadLocals_.sourcePosition};
}

void Port::restore(const PortMark& mark) {
  if (frames_.size() > mark.frames) frames_.resize(mark.frames);
  if (slots_.size() > mark.slots) slots_.resize(mark.slots);
  threadLocals_.currentStdout = mark.output;
  threadLocals_.evaluationLevel = mark.evaluationLevel;
  threadLocals_.sourcePosition = mark.sourcePosition;
}

void Port::reach(hostsdk::Value* value) {
  if (auto* handle = dynamic_cast<Handle*>(value)) handle->reached = true;
}

// Handles that nothing holds any more go here; the values of the others are roots.
void Port::traceHandles(Tracer& tracer) {
  for (const auto& frame : frames_)
    for (Handle* handle : frame) handle->reached = true;
  for (const auto& [slots, count] : slots_)
    for (std::size_t i = 0; i < count; ++i) reach(slots[i]);
  reach(threadLocals_.result);
  reach(threadLocals_.currentStdout);
  std::erase_if(handles_, [&](const std::unique_ptr<Handle>& handle) {
    if (!handle->reached && handle->value.isObject()) byObject_.erase(handle->value.o);
    return !handle->reached;
  });
  for (const auto& handle : handles_) {
    handle->reached = false;
    tracer.mark(handle->value);
  }
}

hostsdk::Value* Port::newString(std::u16string_view text) { return publish(runtime_.newString(std::u16string(text))); }
hostsdk::Value* Port::intern(std::u16string_view name) { return publish(runtime_.name(name)); }

hostsdk::Array* Port::newArray() {
  return keep(std::make_unique<ArrayHandle>(*this, runtime_.heap().make<ArrayObject>()));
}

hostsdk::StringStream* Port::newStringStream() {
  return keep(std::make_unique<StringStreamHandle>(*this, runtime_.heap().make<TextStreamObject>(u"")));
}

hostsdk::FileStream* Port::newFileStream() { return keep(std::make_unique<FileStreamHandle>(*this, Value())); }
hostsdk::Parser* Port::newParser(hostsdk::CharStream* errors) {
  return keep(std::make_unique<ParserHandle>(*this, errors));
}

GlobalObject* Port::findGlobal(hostsdk::Value* name) {
  const auto* text = as<NameObject>(unwrap(name));
  if (!text) throwTypeError(u"a global's name must be a Name");
  return runtime_.findGlobal(text);
}

hostsdk::Value* Port::get(hostsdk::Value* name) {
  GlobalObject* global = findGlobal(name);
  return global ? publish(runtime_.readGlobal(*global)) : nullptr;
}

void Port::set(hostsdk::Value* name, hostsdk::Value* value) {
  GlobalObject* global = findGlobal(name);
  if (!global) throwRuntimeError(u"No such global variable: " + name->text().value_or(u""));
  runtime_.writeGlobal(*global, unwrap(value));
}

void Port::put_new(hostsdk::Value* name, hostsdk::Value* value) {
  if (findGlobal(name)) throwRuntimeError(u"Global variable exists already: " + name->text().value_or(u""));
  const Root kept(runtime_.heap(), unwrap(value));
  runtime_.addGlobal(as<NameObject>(unwrap(name)))->value = kept.value;
}

void Port::remove(hostsdk::Value* name) {
  if (const auto* text = as<NameObject>(unwrap(name))) runtime_.removeGlobal(text);
}

}  // namespace hostkit::script
