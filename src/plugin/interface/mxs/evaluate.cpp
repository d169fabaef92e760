#include "plugin/interface/mxs/evaluate.h"

#include <cstdint>
#include <stdexcept>

#include "hostsdk/exceptions.h"
#include "plugin/util/text.h"

namespace corvantis::mxs {
namespace {

hostsdk::ScriptRuntime* boundRuntime() {
  try {
    return &hostsdk::scriptRuntime();
  } catch (const hostsdk::MAXException&) {
    return nullptr;
  }
}

// Where the calling thread's scripts print at present.
hostsdk::CharStream& currentOutput(hostsdk::ScriptRuntime& runtime) {
  hostsdk::CharStream* output = runtime.thread_locals().currentStdout;
  return output != nullptr ? *output : runtime.listener();
}

template <class Printed>
std::u16string print(Printed& printed) {
  frame<1> values;
  hostsdk::StringStream* stream = hostsdk::scriptRuntime().newStringStream();
  values.link() = stream;
  printed.sprin1(*stream);
  return stream->text_of_stream();
}

hostsdk::Value* compileAndRun(hostsdk::ScriptRuntime& runtime, hostsdk::CharStream& source, frame<3>& values) {
  hostsdk::Value*& parserSlot = values.link();
  hostsdk::Value*& code = values.link();
  hostsdk::Value*& result = values.link();
  hostsdk::Parser* parser = runtime.newParser(&currentOutput(runtime));
  parserSlot = parser;
  code = parser->compile_all(&source);
  if (code != nullptr) result = code->eval();
  result = result != nullptr ? result->get_heap_ptr() : runtime.undefined();
  return result;
}

}  // namespace

hostsdk::ScriptRuntime& readyRuntime() {
  hostsdk::ScriptRuntime& runtime = hostsdk::scriptRuntime();
  runtime.init_thread_locals();
  return runtime;
}

void throwLinkOutOfBounds(std::size_t capacity) {
  throw std::runtime_error("mxs.frame.link: Index out of bounds [" + to_string(static_cast<std::uint64_t>(capacity)) +
                           "]");
}

hostsdk::Value* evaluate(hostsdk::CharStream& source) {
  hostsdk::ScriptRuntime& runtime = hostsdk::scriptRuntime();
  frame<3> values;
  hostsdk::Value* result = nullptr;
  {
    AllocationFrame evaluation(runtime);
    try {
      result = compileAndRun(runtime, source, values);
    } catch (const hostsdk::MAXScriptException& error) {
      throw std::runtime_error(to_string(printedText(error)));
    }
  }
  runtime.thread_locals().result = result;
  return result;
}

std::u16string printedText(const hostsdk::MAXScriptException& error) { return print(error); }

std::u16string textOf(hostsdk::Value& value) {
  if (std::optional<std::u16string> text = value.text()) return *std::move(text);
  return print(value);
}

void printToListener(const std::u16string& text) {
  if (hostsdk::ScriptRuntime* runtime = boundRuntime()) currentOutput(*runtime).puts(text);
}

}  // namespace corvantis::mxs
