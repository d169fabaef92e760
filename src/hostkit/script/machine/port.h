// The runtime behind the host port: values as plug-ins hold them (handles), allocation frames, thread state and
// globals.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "hostkit/script/machine/runtime.h"
#include "hostkit/script/machine/streams.h"
#include "hostsdk/script_runtime.h"

namespace hostkit::script {

class Port;

// What all handles have. A handle lives while an allocation frame, a linked slot or the thread's state holds it.
class Handle {
 public:
  Handle(Port& owner, hostkit::script::Value stands) : port(owner), value(stands) {}
  virtual ~Handle() = default;
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  virtual hostsdk::Value* published() = 0;

  Port& port;
  hostkit::script::Value value;
  bool reached = false;
};

// The Value half of every handle.
template <class Base>
class HandleOf : public Base, public Handle {
 public:
  HandleOf(Port& owner, hostkit::script::Value stands) : Handle(owner, stands) {}
  using ValueKind = hostsdk::Value::Kind;
  hostsdk::Value* published() override { return this; }
  ValueKind kind() const override;
  bool isTrue() const override { return value.isBoolean() && value.b; }
  std::optional<std::u16string> text() const override;
  void sprin1(hostsdk::CharStream& stream) override;
  hostsdk::Value* eval() override;
  hostsdk::Value* get_heap_ptr() override { return this; }
};

class ValueHandle final : public HandleOf<hostsdk::Value> {
 public:
  using HandleOf::HandleOf;
};

class ArrayHandle final : public HandleOf<hostsdk::Array> {
 public:
  using HandleOf::HandleOf;
  std::size_t size() const override { return items().size(); }
  hostsdk::Value* get(std::size_t index) const override;
  void append(hostsdk::Value* item) override;

 private:
  std::vector<hostkit::script::Value>& items() const { return static_cast<ArrayObject*>(value.o)->items; }
};

class StringStreamHandle final : public HandleOf<hostsdk::StringStream> {
 public:
  using HandleOf::HandleOf;
  void putch(char16_t character) override { stream().write({&character, 1}); }
  void puts(std::u16string_view more) override { stream().write(more); }
  void close() override { stream().close(); }
  std::u16string text_of_stream() const override { return stream().content(); }

 private:
  TextStreamObject& stream() const { return *static_cast<TextStreamObject*>(value.o); }
};

class FileStreamHandle final : public HandleOf<hostsdk::FileStream> {
 public:
  using HandleOf::HandleOf;
  void open(const std::u16string& path, const std::u16string& mode, int codePage) override;
  void putch(char16_t character) override { puts({&character, 1}); }
  void puts(std::u16string_view more) override;
  void close() override;
};

class ParserHandle final : public HandleOf<hostsdk::Parser> {
 public:
  // `errors` receives what does not compile; null: the listener. The caller keeps it alive.
  ParserHandle(Port& owner, hostsdk::CharStream* errors) : HandleOf(owner, {}), errors_(errors) {}
  hostsdk::Value* compile_all(hostsdk::CharStream* source) override;

 private:
  hostsdk::CharStream* errors_;
};

// Shows what scripts print; lives as long as the runtime.
class ListenerHandle final : public HandleOf<hostsdk::CharStream> {
 public:
  using HandleOf::HandleOf;
  void putch(char16_t character) override { puts({&character, 1}); }
  void puts(std::u16string_view more) override;
  void close() override {}
};

// Where the host port stands, so that it can be put back there.
struct PortMark {
  std::size_t frames = 0;  // allocation frames
  std::size_t slots = 0;   // linked slots
  hostsdk::CharStream* output = nullptr;
  std::int32_t evaluationLevel = 0, sourcePosition = 0;
};

class Port final : public hostsdk::ScriptRuntime, private hostsdk::GlobalsTable {
 public:
  explicit Port(Runtime& runtime);
  ~Port() override;

  // The handle of a value, kept alive by the innermost allocation frame; one for all requests while it lives.
  hostsdk::Value* publish(const Value& value);
  // The value behind a handle. Values of foreign make are taken over by their text.
  Value unwrap(hostsdk::Value* value);

  // ScriptRuntime
  void init_thread_locals() override {}
  void push_alloc_frame() override { frames_.emplace_back(); }
  void pop_alloc_frame() override;
  hostsdk::ThreadLocals& thread_locals() override { return threadLocals_; }
  void link(hostsdk::Value** slots, std::size_t count) override { slots_.emplace_back(slots, count); }
  void unlink(hostsdk::Value** slots) override;
  hostsdk::Value* newString(std::u16string_view text) override;
  hostsdk::Value* intern(std::u16string_view name) override;
  hostsdk::Array* newArray() override;
  hostsdk::StringStream* newStringStream() override;
  hostsdk::FileStream* newFileStream() override;
  hostsdk::Parser* newParser(hostsdk::CharStream* errors) override;
  hostsdk::Value* undefined() override { return undefined_.get(); }
  hostsdk::Value* ok() override { return ok_.get(); }
  hostsdk::Value* boolean(bool value) override { return value ? true_.get() : false_.get(); }
  hostsdk::GlobalsTable& globals() override { return *this; }
  hostsdk::CharStream& listener() override { return *listener_; }

  Runtime& runtime() { return runtime_; }
  PortMark mark() const;
  // Drops what was pushed and linked since.
  void restore(const PortMark& mark);

 private:
  // GlobalsTable
  hostsdk::Value* get(hostsdk::Value* name) override;
  void set(hostsdk::Value* name, hostsdk::Value* value) override;
  void put_new(hostsdk::Value* name, hostsdk::Value* value) override;
  void remove(hostsdk::Value* name) override;

  template <class T>
  T* keep(std::unique_ptr<T> handle);
  void traceHandles(Tracer& tracer);
  void reach(hostsdk::Value* value);
  GlobalObject* findGlobal(hostsdk::Value* name);

  Runtime& runtime_;
  hostsdk::ThreadLocals threadLocals_;
  std::vector<std::unique_ptr<Handle>> handles_;
  std::unordered_map<const Object*, Handle*> byObject_;
  std::vector<std::vector<Handle*>> frames_{1};
  std::vector<std::pair<hostsdk::Value**, std::size_t>> slots_;
  std::unique_ptr<ValueHandle> undefined_, ok_, true_, false_;
  std::unique_ptr<ListenerHandle> listener_;
};

// An allocation frame for a stretch of our own code that deals in handles.
class AllocationFrame {
 public:
  explicit AllocationFrame(Port& port) : port_(port) { port_.push_alloc_frame(); }
  ~AllocationFrame() { port_.pop_alloc_frame(); }
  AllocationFrame(const AllocationFrame&) = delete;
  AllocationFrame& operator=(const AllocationFrame&) = delete;

 private:
  Port& port_;
};

}  // namespace hostkit::script
