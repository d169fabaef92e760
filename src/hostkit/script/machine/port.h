// The runtime behind the host port: allocation frames, thread state, globals, and the table of handles.
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "hostkit/script/machine/handles.h"
#include "hostkit/script/machine/runtime.h"

namespace hostkit::script {

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
