// Script values as plug-ins see them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "hostsdk/api.h"
#include "hostsdk/exceptions.h"

namespace hostsdk {

class CharStream;

// Base of everything the script runtime's collector owns.
class HOSTSDK_API Collectable {
 public:
  virtual ~Collectable();
  Collectable(const Collectable&) = delete;
  Collectable& operator=(const Collectable&) = delete;

 protected:
  Collectable() = default;
};

// A script value. Owned by the runtime's collector: see ScriptRuntime for how long a pointer stays good.
class HOSTSDK_API Value : public Collectable {
 public:
  ~Value() override;

  // What kind of value it is, as far as plug-ins ask.
  enum class Kind { undefined, ok, boolean, string, other };
  virtual Kind kind() const = 0;
  // The truth of a boolean; false for any other value.
  virtual bool isTrue() const = 0;

  // The value's own conversion to text: a string's or name's characters; nullopt for what is not text, such as numbers.
  virtual std::optional<std::u16string> text() const = 0;
  // Writes the printed form, as the host's listener shows the value: strings in quotes.
  virtual void sprin1(CharStream& stream) = 0;

  // Evaluates code that Parser::compile_all made; any other value gives itself. Throws MAXScriptException.
  virtual Value* eval() = 0;
  // The value in a form that may outlive the evaluation.
  virtual Value* get_heap_ptr() = 0;
};

// The array of a script, from 0.
class HOSTSDK_API Array : public Value {
 public:
  ~Array() override;
  virtual std::size_t size() const = 0;
  virtual Value* get(std::size_t index) const = 0;
  virtual void append(Value* value) = 0;
};

// A stream of characters that scripts read from and print to.
class HOSTSDK_API CharStream : public Value {
 public:
  ~CharStream() override;
  virtual void putch(char16_t character) = 0;
  virtual void puts(std::u16string_view text) = 0;
  virtual void close() = 0;
};

// A stream over text in memory.
class HOSTSDK_API StringStream : public CharStream {
 public:
  ~StringStream() override;
  virtual std::u16string text_of_stream() const = 0;
};

// A stream over a file.
class HOSTSDK_API FileStream : public CharStream {
 public:
  ~FileStream() override;
  // Mode as for fopen; code page -1: by byte-order mark, else UTF-8 if valid, else ANSI. Throws MAXScriptException when
  // the file cannot be opened.
  virtual void open(const std::u16string& path, const std::u16string& mode, int codePage) = 0;
};

// An error inside a script. Not a std::exception.
class HOSTSDK_API MAXScriptException {
 public:
  virtual ~MAXScriptException();
  // Prints the error as the listener would show it (such as "-- Runtime error: text"), without a line end.
  virtual void sprin1(CharStream& stream) const = 0;
};

// The error that a native function raises into the script: printed "-- Runtime error: " + message.
class HOSTSDK_API RuntimeError : public MAXScriptException {
 public:
  explicit RuntimeError(std::u16string message);
  ~RuntimeError() override;
  void sprin1(CharStream& stream) const override;
  const std::u16string& message() const { return message_; }

 private:
  std::u16string message_;
};

}  // namespace hostsdk
