// Running scripts from scripts, errors, and scripts that run when the host does something.
#include <algorithm>
#include <iterator>

#include "hostkit/script/library/library.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/evaluator.h"
#include "hostkit/script/machine/operators.h"
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

// Callbacks

// In alphabetical order. A host that knows no such moment never runs what waits for it.
constexpr std::u16string_view kEvents[] = {u"animateoff",
                                           u"animateon",
                                           u"animationrangechange",
                                           u"animlayersdisabled",
                                           u"animlayersenabled",
                                           u"beginrenderingactualframe",
                                           u"beginrenderingreflectrefractmap",
                                           u"beginrenderingshadowmap",
                                           u"bitmapchanged",
                                           u"colorchanged",
                                           u"endrenderingactualframe",
                                           u"filelinkpostbind",
                                           u"filelinkprebind",
                                           u"fileopenfailed",
                                           u"filepostmerge",
                                           u"filepostmergeprocess",
                                           u"filepostopen",
                                           u"filepostopenprocess",
                                           u"filepostsave",
                                           u"filepostsaveprocess",
                                           u"filepremerge",
                                           u"filepremergeprocess",
                                           u"filepreopen",
                                           u"filepreopenprocess",
                                           u"filepresave",
                                           u"filepresaveprocess",
                                           u"filesavefailed",
                                           u"layercreated",
                                           u"layercurrentchanged",
                                           u"layerdeleted",
                                           u"layernamechanged",
                                           u"mtllibpostmerge",
                                           u"mtllibpostopen",
                                           u"mtllibpostsave",
                                           u"mtllibpremerge",
                                           u"mtllibpreopen",
                                           u"mtllibpresave",
                                           u"nodecloned",
                                           u"nodecreated",
                                           u"nodefreeze",
                                           u"nodehide",
                                           u"nodelinked",
                                           u"nodenameset",
                                           u"nodepostdelete",
                                           u"nodepostmaterial",
                                           u"nodepredelete",
                                           u"nodeprematerial",
                                           u"noderenamed",
                                           u"nodeunfreeze",
                                           u"nodeunhide",
                                           u"nodeunlinked",
                                           u"postexport",
                                           u"postimport",
                                           u"postmirrornodes",
                                           u"postmodifieradded",
                                           u"postmodifierdeleted",
                                           u"postnodegeneralpropchanged",
                                           u"postnodescloned",
                                           u"postprogress",
                                           u"postrender",
                                           u"postrendererchange",
                                           u"postrenderframe",
                                           u"postsystemshutdown",
                                           u"postsystemstartup",
                                           u"preexport",
                                           u"preimport",
                                           u"premirrornodes",
                                           u"premodifieradded",
                                           u"premodifierdeleted",
                                           u"prenodegeneralpropchanged",
                                           u"prenodescloned",
                                           u"preprogress",
                                           u"prerender",
                                           u"prerendererchange",
                                           u"prerendereval",
                                           u"prerenderframe",
                                           u"presystemshutdown",
                                           u"presystemstartup",
                                           u"renderparamschanged",
                                           u"renpresetpostload",
                                           u"renpresetpostsave",
                                           u"renpresetpreload",
                                           u"renpresetpresave",
                                           u"sceneaddednode",
                                           u"sceneredo",
                                           u"sceneundo",
                                           u"selectionsetchanged",
                                           u"spacemodechange",
                                           u"systempostdirchange",
                                           u"systempostnew",
                                           u"systempostreset",
                                           u"systempredirchange",
                                           u"systemprenew",
                                           u"systemprereset",
                                           u"timeunitschanged",
                                           u"unitschange",
                                           u"viewportchange",
                                           u"viewportsafeframetoggle"};

const std::u16string& eventOf(const Call& call) {
  const NameObject* event = toName(call.runtime, call[0]);
  if (!std::binary_search(std::begin(kEvents), std::end(kEvents), event->folded))
    throwRuntimeError(u"Unknown callback event: #" + event->text);
  return event->folded;
}

// callbacks.addScript #event text-or-function [fileName:] [id:]
Value addScript(const Call& call) {
  CallbackScript added;
  added.event = eventOf(call);
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
  const std::u16string event = call.count() > 0 ? eventOf(call) : u"";
  if (event.empty() && id.isUnsupplied()) throwRuntimeError(u"removeScripts requires an event or id:");
  std::erase_if(call.runtime.callbacks, [&](const CallbackScript& callback) {
    return (event.empty() || callback.event == event) && (id.isUnsupplied() || equal(call.runtime, callback.id, id));
  });
  return Value::ok();
}

Value notificationParam(const Call& call) { return call.runtime.callbackParameter; }

constexpr BuiltinEntry kEntries[] = {
    {u"execute", 1, 1, execute},
    {u"fileIn", 1, 1, fileIn},
    {u"throw", 0, 2, raise},
    {u"getCurrentException", 0, 0, currentException},
    {u"getCurrentExceptionStackTrace", 0, 0, exceptionStack},
    {u"getCurrentExceptionCallStack", 0, 0, exceptionStack},
    {u"apply", 2, 2, apply},
    {u"callbacks.addScript", 1, 2, addScript},
    {u"callbacks.removeScripts", 0, 1, removeScripts},
    {u"callbacks.notificationParam", 0, 0, notificationParam},
};

}  // namespace

std::span<const BuiltinEntry> scriptBuiltins() { return kEntries; }

}  // namespace hostkit::script
