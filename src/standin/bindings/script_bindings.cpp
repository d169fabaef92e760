#include "standin/bindings/script_bindings.h"

#include <array>
#include <filesystem>
#include <utility>

#include "hostkit/services/text.h"
#include "hostsdk/script_value.h"
#include "platform/files.h"
#include "standin/bindings/script_layers.h"
#include "standin/bindings/script_node.h"
#include "standin/bindings/script_render.h"
#include "standin/bindings/script_values.h"
#include "standin/bindings/script_views.h"

namespace standin::bindings {
namespace {

using hostkit::script::HostInterval;
using hostkit::script::HostTime;
using hostkit::script::HostValue;
using B = ScriptBindings;

struct Global {
  const char16_t* name;  // as it is shown
  HostValue (*get)(B&);
  void (*set)(B&, const HostValue&);  // null: read-only
};

scene::Scene& sceneOf(B& b) { return b.core().live().description(); }

std::int32_t size(const HostValue& value, const char16_t* what) {
  const std::int32_t n = asInteger(value, what);
  if (n < 1 || n > 32767) throw hostsdk::RuntimeError(std::u16string(what) + u" requires an Integer from 1 to 32767");
  return n;
}

void setFrameRate(B& b, const HostValue& value) {
  const std::int32_t rate = asInteger(value, u"frameRate");
  if (rate < 1 || rate > scene::kTicksPerSecond)
    throw hostsdk::RuntimeError(u"frameRate requires an Integer from 1 to 4800");
  sceneOf(b).frameRate = rate;
}

void setAnimationRange(B& b, const HostValue& value) {
  const auto* range = std::get_if<HostInterval>(&value);
  if (!range) throw hostsdk::RuntimeError(u"animationRange requires Interval");
  sceneOf(b).firstFrame = range->start / b.ticksPerFrame();
  sceneOf(b).lastFrame = range->end / b.ticksPerFrame();
}

std::u16string scenePart(B& b, bool folder) {
  const std::string& path = sceneOf(b).path;
  if (path.empty()) return {};
  const std::filesystem::path file(path);
  return folder ? platform::windowsPath(file.parent_path().string() + "/")
                : hostkit::services::toWide(file.filename().string());
}

const std::array kGlobals{
    Global{u"sliderTime", [](B& b) -> HostValue { return HostTime{b.time()}; },
           [](B& b, const HostValue& v) { b.setTime(asTime(v, b.ticksPerFrame(), u"sliderTime")); }},
    Global{u"currentTime", [](B& b) -> HostValue { return HostTime{b.time()}; }, nullptr},
    Global{u"animationRange", [](B& b) -> HostValue { return b.activeSegment(); }, setAnimationRange},
    Global{u"frameRate", [](B& b) -> HostValue { return sceneOf(b).frameRate; }, setFrameRate},
    Global{u"ticksPerFrame", [](B& b) -> HostValue { return b.ticksPerFrame(); }, nullptr},
    Global{u"renderWidth", [](B& b) -> HostValue { return b.core().RenderWidth(); },
           [](B& b, const HostValue& v) { b.core().SetRenderWidth(size(v, u"renderWidth")); }},
    Global{u"renderHeight", [](B& b) -> HostValue { return b.core().RenderHeight(); },
           [](B& b, const HostValue& v) { b.core().SetRenderHeight(size(v, u"renderHeight")); }},
    Global{u"renderPixelAspect", [](B& b) -> HostValue { return b.core().RenderPixelAspect(); },
           [](B& b, const HostValue& v) { sceneOf(b).render.pixelAspect = asFloat(v, u"renderPixelAspect"); }},
    Global{u"rendOutputFilename", [](B& b) -> HostValue { return b.core().RenderOutput().Name(); },
           [](B& b, const HostValue& v) { b.core().setRenderOutput(asText(v, u"rendOutputFilename")); }},
    Global{u"rendSaveFile", [](B& b) -> HostValue { return b.core().RenderSaveFile(); },
           [](B& b, const HostValue& v) { b.core().SetRenderSaveFile(asBoolean(v, u"rendSaveFile")); }},
    Global{u"skipRenderedFrames", [](B& b) -> HostValue { return b.core().RenderSkipExisting(); },
           [](B& b, const HostValue& v) { sceneOf(b).render.skipExisting = asBoolean(v, u"skipRenderedFrames"); }},
    Global{u"maxFileName", [](B& b) -> HostValue { return scenePart(b, false); }, nullptr},
    Global{u"maxFilePath", [](B& b) -> HostValue { return scenePart(b, true); }, nullptr},
    Global{u"renderers", [](B& b) -> HostValue { return scriptRenderers(b.core()); }, nullptr},
    Global{u"maxOps", [](B& b) -> HostValue { return scriptMaxOps(b.core()); }, nullptr},
    Global{u"LayerManager", [](B& b) -> HostValue { return scriptLayers(b.core()); }, nullptr},
    Global{u"viewport", [](B& b) -> HostValue { return scriptViewports(b.core()); }, nullptr},
    Global{u"renderSceneDialog", [](B&) -> HostValue { return scriptRenderDialog(); }, nullptr},
    Global{u"rootNode", [](B& b) -> HostValue { return scriptRootNode(b.core()); }, nullptr},
    Global{u"sceneMaterials", [](B& b) { return scriptMaterials(b.core()); }, nullptr},
    Global{u"environmentMap", [](B&) -> HostValue { return {}; }, nullptr},
};

const Global* find(std::u16string_view name) {
  for (const Global& global : kGlobals)
    if (lowerCase(global.name) == name) return &global;
  return nullptr;
}

}  // namespace

ScriptBindings::ScriptBindings(host::Core& core, std::function<void(const std::string&)> log)
    : core_(core), log_(std::move(log)) {}

std::vector<std::u16string> ScriptBindings::propertyNames() const {
  std::vector<std::u16string> names;
  names.reserve(kGlobals.size());
  for (const Global& global : kGlobals) names.emplace_back(global.name);
  for (std::u16string& name : settings_.names()) names.push_back(std::move(name));
  return names;
}

std::vector<std::u16string> ScriptBindings::functionNames() const {
  return {u"loadMaxFile", u"resetMaxFile", u"getRenderType", u"setRenderType"};
}

std::optional<HostValue> ScriptBindings::get(std::u16string_view name) {
  const Global* global = find(name);
  return global ? global->get(*this) : settings_.get(name);
}

bool ScriptBindings::set(std::u16string_view name, const HostValue& value) {
  const Global* global = find(name);
  if (!global) return settings_.set(name, value, ticksPerFrame());
  if (!global->set) return false;
  global->set(*this, value);
  return true;
}

std::optional<HostValue> ScriptBindings::call(std::u16string_view name, const std::vector<HostValue>& arguments,
                                              const hostkit::script::HostKeywords&) {
  if (name == u"loadmaxfile") {
    if (arguments.size() != 1) throw hostsdk::RuntimeError(u"loadMaxFile requires the name of a scene file");
    const std::u16string path = asText(arguments[0], u"loadMaxFile");
    return core_.IsSceneFile(path) && core_.LoadFromFile(path, 0);
  }
  if (name == u"resetmaxfile") {
    core_.ResetScene(1);
    return hostkit::script::HostOk{};
  }
  if (name == u"getrendertype") return hostkit::script::HostName{renderType_};
  if (name == u"setrendertype") {
    if (arguments.size() != 1) throw hostsdk::RuntimeError(u"setRenderType requires the name of a render type");
    renderType_ = asText(arguments[0], u"setRenderType");
    return hostkit::script::HostOk{};
  }
  return std::nullopt;
}

std::vector<std::shared_ptr<hostkit::script::HostObject>> ScriptBindings::nodes() { return scriptNodes(core_); }

HostInterval ScriptBindings::activeSegment() {
  const scene::Scene& scene = core_.live().description();
  return {scene.firstFrame * ticksPerFrame(), scene.lastFrame * ticksPerFrame()};
}

void ScriptBindings::log(std::u16string_view text) { log_(hostkit::services::toUtf8(text)); }

}  // namespace standin::bindings
