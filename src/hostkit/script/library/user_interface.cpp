// What would show something, which goes to the log instead, and what this host does not have.
#include <algorithm>

#include "hostkit/script/library/library.h"
#include "hostkit/script/machine/printing.h"

namespace hostkit::script {
namespace {

void log(const Call& call, std::u16string_view what) {
  const Value title = call.keyword(u"title");
  std::u16string line(what);
  if (!title.isUnsupplied()) line += u" (" + asText(call.runtime, title) + u")";
  if (call.count() > 0) line += u": " + asText(call.runtime, call[0]);
  call.runtime.host().log(line);
}

Value messageBox(const Call& call) {
  log(call, u"messageBox");
  return Value::ofBoolean(true);
}
Value queryBox(const Call& call) {
  log(call, u"queryBox, answered no");
  return Value::ofBoolean(false);
}
Value yesNoCancelBox(const Call& call) {
  log(call, u"yesNoCancelBox, answered no");
  return call.runtime.name(u"no");
}
Value dialog(const Call& call) {
  log(call, u"Dialogs and rollouts are not shown");
  return Value::ok();
}
Value prompt(const Call& call) {
  log(call, u"prompt");
  return Value::ok();
}
Value progress(const Call& call) {
  log(call, u"progress");
  return Value::ofBoolean(true);
}
Value yes(const Call&) { return Value::ofBoolean(true); }
Value nothing(const Call&) { return Value::ok(); }
Value no(const Call&) { return Value::ofBoolean(false); }

// Functions of the production host that scripts must not believe to have worked.

template <std::size_t N>
struct Name {
  constexpr Name(const char16_t (&name)[N]) { std::copy_n(name, N, text); }  // NOLINT: made of literals
  char16_t text[N];
};

template <Name kName>
Value refuse(const Call&) {
  throwRuntimeError(std::u16string(kName.text) + u" is not supported by this host");
}

template <Name kName>
constexpr BuiltinEntry refused() {
  return {kName.text, 0, -1, refuse<kName>};
}

constexpr BuiltinEntry kEntries[] = {
    {u"messageBox", 1, 1, messageBox},
    {u"queryBox", 1, 1, queryBox},
    {u"yesNoCancelBox", 1, 1, yesNoCancelBox},
    {u"createDialog", 1, -1, dialog},
    {u"destroyDialog", 1, 1, dialog},
    {u"addRollout", 1, -1, dialog},
    {u"removeRollout", 1, -1, dialog},
    {u"openUtility", 1, -1, dialog},
    {u"pushPrompt", 1, 1, prompt},
    {u"replacePrompt", 1, 1, prompt},
    {u"displayTempPrompt", 2, 2, prompt},
    {u"popPrompt", 0, 0, nothing},
    {u"progressStart", 1, 1, progress},
    {u"progressUpdate", 1, 1, yes},
    {u"progressEnd", 0, 0, nothing},
    {u"getProgressCancel", 0, 0, no},
    {u"setProgressCancel", 1, 1, nothing},
    {u"setQuietMode", 1, 1, nothing},
    {u"getQuietMode", 0, 0, yes},
    {u"quietMode", 0, 1, yes},
    {u"checkForSave", 0, 0, yes},
    {u"getSaveRequired", 0, 0, no},
    {u"setSaveRequired", 1, 1, nothing},
    {u"freeSceneBitmaps", 0, 0, nothing},
    {u"suspendEditing", 0, -1, nothing},
    {u"resumeEditing", 0, -1, nothing},
    {u"completeRedraw", 0, 0, nothing},
    {u"redrawViews", 0, 0, nothing},
    {u"forceCompleteRedraw", 0, -1, nothing},
    {u"enableSceneRedraw", 0, 0, nothing},
    {u"disableSceneRedraw", 0, 0, nothing},
    {u"isSceneRedrawDisabled", 0, 0, no},
    {u"setWaitCursor", 0, 0, nothing},
    {u"setArrowCursor", 0, 0, nothing},
    {u"windows.processPostedMessages", 0, 0, nothing},
    refused<u"render">(),
    refused<u"saveMaxFile">(),
    refused<u"saveNodes">(),
    refused<u"mergeMaxFile">(),
    refused<u"holdMaxFile">(),
    refused<u"fetchMaxFile">(),
    refused<u"importFile">(),
    refused<u"exportFile">(),
    refused<u"quitMAX">(),
    refused<u"addModifier">(),
    refused<u"convertToMesh">(),
    refused<u"convertToPoly">(),
    refused<u"delete">(),
    refused<u"instance">(),
    refused<u"reference">(),
    refused<u"snapshot">(),
    refused<u"cloneNodes">(),
    refused<u"bitmap">(),
    refused<u"openBitmap">(),
    refused<u"dotNetClass">(),
    refused<u"dotNetObject">(),
    refused<u"dotNet.loadAssembly">(),
    refused<u"python.execute">(),
    refused<u"python.executeFile">(),
    refused<u"createOLEObject">(),
    refused<u"registry.openKey">(),
};

}  // namespace

std::span<const BuiltinEntry> interfaceBuiltins() { return kEntries; }

}  // namespace hostkit::script
