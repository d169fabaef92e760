// Values of the runtime as plug-ins hold them: objects of the host port's classes, each standing for one value.
#pragma once

#include <memory>
#include <string>

#include "hostkit/script/machine/streams.h"
#include "hostkit/script/machine/structures.h"
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
  using HandleOf::HandleOf;
  hostsdk::Value* compile_all(hostsdk::CharStream* source) override;
};

// Shows what scripts print; lives as long as the runtime.
class ListenerHandle final : public HandleOf<hostsdk::CharStream> {
 public:
  using HandleOf::HandleOf;
  void putch(char16_t character) override { puts({&character, 1}); }
  void puts(std::u16string_view more) override;
  void close() override {}
};

}  // namespace hostkit::script
