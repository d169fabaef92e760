// Running scripts from scripts, and errors.
#include "hostkit/script/library/builtins.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/evaluator.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/streams.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

// A text, or what is left of a string stream, as a script of its own: it sees globals only.
Value execute(const Call& call) {
  const auto* stream = as<TextStreamObject>(call[0]);
  const std::u16string text = stream ? std::u16string(stream->rest()) : std::u16string(toString(call.runtime, call[0]));
  return call.runtime.runSource(std::make_shared<const Source>(Source{u"", text}));
}

Value fileIn(const Call& call) {
  const std::u16string path(toString(call.runtime, call[0]));
  const auto source = call.runtime.findScript(path);
  if (!source) throwRuntimeError(u"fileIn cannot open: " + path);
  return call.runtime.runSource(source);
}

// throw text [value]; throw() raises the caught error again.
Value raise(const Call& call) {
  if (call.count() == 0) {
    const ScriptError* current = call.runtime.evaluator().currentError();
    if (!current) throwRuntimeError(u"throw() is only permitted in a catch");
    throw ScriptError(*current);
  }
  std::u16string text = asText(call.runtime, call[0]);
  if (call.count() > 1) text += u" " + printed(call.runtime, call[1]);
  throwRuntimeError(text);
}

Value currentException(const Call& call) {
  const ScriptError* current = call.runtime.evaluator().currentError();
  return call.runtime.newString(current ? current->message() : u"");
}

// "** line" for each function that was running.
Value exceptionStack(const Call& call) {
  const ScriptError* current = call.runtime.evaluator().currentError();
  if (!current) return call.runtime.newString(u"");
  const Place& place = current->place();
  std::u16string text = u"** " + current->message().substr(0, current->message().find(u'\n')) + u"\n";
  if (place.source)
    text += u"** filename: " + place.source->name + u"; line: " + toText(place.source->lineColumn(place.offset).line) +
            u"\n";
  for (const StackLevel& level : current->stack()) text += u"** In " + level.what + u"\n";
  return call.runtime.newString(text);
}

// apply function #(arguments)
Value apply(const Call& call) {
  const std::vector<Value> arguments = toArray(call.runtime, call[1])->items;
  return call.runtime.evaluator().call(call[0], arguments, call.keywordNames, call.keywordValues);
}

constexpr BuiltinEntry kEntries[] = {
    {u"execute", 1, 1, execute},
    {u"fileIn", 1, 1, fileIn},
    {u"throw", 0, 2, raise},
    {u"getCurrentException", 0, 0, currentException},
    {u"getCurrentExceptionStackTrace", 0, 0, exceptionStack},
    {u"getCurrentExceptionCallStack", 0, 0, exceptionStack},
    {u"apply", 2, 2, apply},
};

}  // namespace

std::span<const BuiltinEntry> scriptBuiltins() { return kEntries; }

}  // namespace hostkit::script
