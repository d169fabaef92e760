#include "hostkit/script/library/library.h"

#include <array>
#include <chrono>
#include <numbers>

#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/folders.h"
#include "hostkit/script/machine/scene_nodes.h"
#include "hostkit/script/machine/tuples.h"

namespace hostkit::script {
namespace {

struct NamedColor {
  std::u16string_view name;
  float r, g, b;
};
constexpr std::array<NamedColor, 9> kColors{{{u"red", 255, 0, 0},
                                             {u"green", 0, 255, 0},
                                             {u"blue", 0, 0, 255},
                                             {u"white", 255, 255, 255},
                                             {u"black", 0, 0, 0},
                                             {u"gray", 128, 128, 128},
                                             {u"orange", 255, 127, 0},
                                             {u"yellow", 255, 255, 0},
                                             {u"brown", 138, 69, 18}}};

Value printsAll(Runtime& runtime, const Value&) { return Value::ofBoolean(runtime.printAllElements); }
void setPrintsAll(Runtime& runtime, const Value&, const Value& value) {
  runtime.printAllElements = toBoolean(runtime, value);
}

Value localTime(Runtime& runtime) {
  return runtime.newString(dateText(std::chrono::system_clock::to_time_t(std::chrono::system_clock::now())));
}

// Constants that every script can use, and the built-in structures that hold settings.
void defineConstants(Runtime& runtime) {
  runtime.setConstant(u"true", Value::ofBoolean(true));
  runtime.setConstant(u"false", Value::ofBoolean(false));
  runtime.setConstant(u"undefined", Value());
  runtime.setConstant(u"unsupplied", Value::unsupplied());
  runtime.setConstant(u"ok", Value::ok());
  runtime.setConstant(u"dontcollect", Value(Tag::dontCollect));
  runtime.setConstant(u"silentValue", Value(Tag::silentValue));
  runtime.setConstant(u"pi", Value::ofFloat(std::numbers::pi_v<float>));
  runtime.setConstant(u"e", Value::ofFloat(std::numbers::e_v<float>));
  runtime.setConstant(u"x_axis", newPoint3(runtime, 1, 0, 0));
  runtime.setConstant(u"y_axis", newPoint3(runtime, 0, 1, 0));
  runtime.setConstant(u"z_axis", newPoint3(runtime, 0, 0, 1));
  for (const NamedColor& each : kColors)
    runtime.setConstant(each.name, newTuple(runtime, TupleKind::color, {each.r, each.g, each.b, 255}));
  for (const NamedNodeSet& each : namedNodeSets())
    runtime.setConstant(each.name, runtime.heap().make<NodeSetObject>(each.which, std::u16string(each.superClass)));
  GlobalObject* now = runtime.addGlobal(runtime.name(u"localTime"));
  now->compute = localTime;
  now->isConstant = true;
  GlobalObject* options = runtime.addGlobal(runtime.name(u"options"));
  auto* space = runtime.heap().make<NamespaceObject>(options->name);
  options->value = space;
  space->properties.push_back({runtime.name(u"printAllElements"), printsAll, setPrintsAll});
  defineSystemInfo(runtime);
}

}  // namespace

Library standardLibrary() {
  Library library;
  library.functions = {stringBuiltins(),     collectionBuiltins(),   mathBuiltins(),       geometryBuiltins(),
                       textStreamBuiltins(), binaryStreamBuiltins(), fileSystemBuiltins(), iniBuiltins(),
                       systemBuiltins(),     scriptBuiltins(),       classBuiltins(),      sceneBuiltins(),
                       interfaceBuiltins()};
  library.classes = plainClassRows();
  for (ClassRow& row : geometricClassRows()) library.classes.push_back(std::move(row));
  library.defineConstants = defineConstants;
  return library;
}

std::u16string filePath(const Call& call, std::size_t index) {
  return expandedPath(call.runtime.options(), toString(call.runtime, call[index]));
}

void requireFileAccess(Runtime& runtime) {
  if (!runtime.options().fileAccess) throwRuntimeError(u"File access is switched off in this host");
}

}  // namespace hostkit::script
