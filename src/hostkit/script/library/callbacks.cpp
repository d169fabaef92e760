// Scripts that run when the host does something.
#include "hostkit/script/library/builtins.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/operators.h"
#include "hostkit/script/machine/printing.h"

namespace hostkit::script {
namespace {

// callbacks.addScript #event text-or-function [fileName:] [id:]
Value addScript(const Call& call) {
  CallbackScript added;
  added.event = toName(call.runtime, call[0])->folded;
  added.id = call.keyword(u"id");
  const Value file = call.keyword(u"filename");
  added.isFile = !file.isUnsupplied();
  if (!added.isFile && call.count() < 2) throwArgumentCount(u"addScript", 2, call.count());
  added.script = added.isFile ? Value(call.runtime.newString(std::u16string(toString(call.runtime, file)))) : call[1];
  if (!added.isFile && !as<FunctionObject>(added.script)) toString(call.runtime, added.script);
  call.runtime.callbacks.push_back(std::move(added));
  return Value::ok();
}

// callbacks.removeScripts [#event] [id:]: those that fit both.
Value removeScripts(const Call& call) {
  const Value id = call.keyword(u"id");
  const std::u16string event = call.count() > 0 ? toName(call.runtime, call[0])->folded : u"";
  if (event.empty() && id.isUnsupplied()) throwRuntimeError(u"removeScripts requires an event or id:");
  std::erase_if(call.runtime.callbacks, [&](const CallbackScript& callback) {
    return (event.empty() || callback.event == event) && (id.isUnsupplied() || equal(call.runtime, callback.id, id));
  });
  return Value::ok();
}

Value notificationParam(const Call& call) { return call.runtime.callbackParameter; }

constexpr BuiltinEntry kEntries[] = {
    {u"callbacks.addScript", 1, 2, addScript},
    {u"callbacks.removeScripts", 0, 1, removeScripts},
    {u"callbacks.notificationParam", 0, 0, notificationParam},
};

}  // namespace

std::span<const BuiltinEntry> callbackBuiltins() { return kEntries; }

}  // namespace hostkit::script
