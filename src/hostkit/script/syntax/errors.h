// Script errors: the exception that carries one, and the wordings.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "hostkit/script/syntax/source.h"
#include "hostsdk/script_value.h"

namespace hostkit::script {

// One function (or block) that was running when an error was raised, innermost first.
struct StackLevel {
  std::u16string what;  // "f()" or "anonymous codeblock"
  Place place;
  std::vector<std::u16string> variables;  // "name: value"
};

// An error of a script. Prints as its message, every line of which starts with "-- ".
class ScriptError : public hostsdk::MAXScriptException {
 public:
  explicit ScriptError(std::u16string message) : message_(std::move(message)) {}
  ScriptError(std::u16string message, Place place) : message_(std::move(message)), place_(std::move(place)) {}

  void sprin1(hostsdk::CharStream& stream) const override { stream.puts(message_); }
  const std::u16string& message() const { return message_; }

  // Where it was raised; an empty place until somebody who knows fills it in.
  const Place& place() const { return place_; }
  void setPlace(Place place) { place_ = std::move(place); }
  std::vector<StackLevel>& stack() { return stack_; }
  const std::vector<StackLevel>& stack() const { return stack_; }
  // Raised while compiling.
  bool isSyntax() const { return syntax_; }
  void setSyntax() { syntax_ = true; }

 private:
  std::u16string message_;
  Place place_;
  std::vector<StackLevel> stack_;
  bool syntax_ = false;
};

// "-- Runtime error: " + text.
[[noreturn]] void throwRuntimeError(std::u16string_view text);
// "-- Type error: " + text.
[[noreturn]] void throwTypeError(std::u16string_view text);
// "-- Unable to convert: " + printed value + " to type: " + type.
[[noreturn]] void throwUnableToConvert(std::u16string_view printed, std::u16string_view type);
// "-- Argument count error: f wanted 2, got 1".
[[noreturn]] void throwArgumentCount(std::u16string_view function, std::size_t wanted, std::size_t got);

// What the listener shows for an error that nobody caught: where it happened, the kind of script ("FileIn"), the
// message, the line with a caret, and the call stack.
std::u16string errorReport(const ScriptError& error, std::u16string_view scriptKind);

// Numbers in messages.
std::u16string toText(std::size_t number);

}  // namespace hostkit::script
