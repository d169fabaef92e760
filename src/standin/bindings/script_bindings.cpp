#include "standin/bindings/script_bindings.h"

#include <filesystem>
#include <utility>

#include "hostkit/text/utf8.h"
#include "hostsdk/script_value.h"
#include "platform/files.h"
#include "standin/bindings/script_node.h"
#include "standin/bindings/script_render.h"
#include "standin/bindings/script_scene.h"

namespace standin::bindings {
namespace {

using hostkit::bindings::Arguments;
using hostkit::bindings::asBoolean;
using hostkit::bindings::asInteger;
using hostkit::bindings::asText;
using hostkit::bindings::kAnyCount;
using hostkit::script::HostInterval;
using hostkit::script::HostOk;
using hostkit::script::HostTime;
using hostkit::script::HostValue;
using B = ScriptBindings;

scene::Scene& sceneOf(B& b) { return b.core().live().description(); }

std::int32_t size(const HostValue& value, const char16_t* what) { return asInteger(value, what, 1, 32767); }

void setAnimationRange(B& b, const HostValue& value) {
  const HostInterval range = hostkit::bindings::asInterval(value, u"animationRange");
  sceneOf(b).firstFrame = range.start / b.ticksPerFrame();
  sceneOf(b).lastFrame = range.end / b.ticksPerFrame();
}

std::u16string scenePart(B& b, bool folder) {
  const std::string& path = sceneOf(b).path;
  if (path.empty()) return {};
  const std::filesystem::path file(path);
  return folder ? platform::windowsPath(file.parent_path().string() + "/")
                : hostkit::fromUtf8(file.filename().string());
}

constexpr hostkit::bindings::Property<B> kGlobals[] = {
    {u"sliderTime", [](B& b) -> HostValue { return HostTime{b.time()}; },
     [](B& b, const HostValue& v) { b.setTime(hostkit::bindings::asTime(v, b.ticksPerFrame(), u"sliderTime")); }},
    {u"currentTime", [](B& b) -> HostValue { return HostTime{b.time()}; }},
    {u"animationRange", [](B& b) -> HostValue { return b.activeSegment(); }, setAnimationRange},
    {u"frameRate", [](B& b) -> HostValue { return sceneOf(b).frameRate; },
     [](B& b, const HostValue& v) { sceneOf(b).frameRate = asInteger(v, u"frameRate", 1, scene::kTicksPerSecond); }},
    {u"ticksPerFrame", [](B& b) -> HostValue { return b.ticksPerFrame(); }},
    {u"renderWidth", [](B& b) -> HostValue { return b.core().RenderWidth(); },
     [](B& b, const HostValue& v) { b.core().SetRenderWidth(size(v, u"renderWidth")); }},
    {u"renderHeight", [](B& b) -> HostValue { return b.core().RenderHeight(); },
     [](B& b, const HostValue& v) { b.core().SetRenderHeight(size(v, u"renderHeight")); }},
    {u"renderPixelAspect", [](B& b) -> HostValue { return b.core().RenderPixelAspect(); },
     [](B& b, const HostValue& v) {
       sceneOf(b).render.pixelAspect = hostkit::bindings::asFloat(v, u"renderPixelAspect");
     }},
    {u"rendOutputFilename", [](B& b) -> HostValue { return b.core().RenderOutput().Name(); },
     [](B& b, const HostValue& v) { b.core().setRenderOutput(asText(v, u"rendOutputFilename")); }},
    {u"rendSaveFile", [](B& b) -> HostValue { return b.core().RenderSaveFile(); },
     [](B& b, const HostValue& v) { b.core().SetRenderSaveFile(asBoolean(v, u"rendSaveFile")); }},
    {u"skipRenderedFrames", [](B& b) -> HostValue { return b.core().RenderSkipExisting(); },
     [](B& b, const HostValue& v) { sceneOf(b).render.skipExisting = asBoolean(v, u"skipRenderedFrames"); }},
    {u"maxFileName", [](B& b) -> HostValue { return scenePart(b, false); }},
    {u"maxFilePath", [](B& b) -> HostValue { return scenePart(b, true); }},
    {u"renderers", [](B& b) -> HostValue { return scriptRenderers(b.core()); }},
    {u"maxOps", [](B& b) -> HostValue { return scriptMaxOps(b.core()); }},
    {u"LayerManager", [](B& b) -> HostValue { return scriptLayers(b.core()); }},
    {u"viewport", [](B& b) -> HostValue { return scriptViewports(b.core()); }},
    {u"renderSceneDialog", [](B& b) -> HostValue { return scriptRenderDialog(b.core()); }},
    {u"rootNode", [](B& b) -> HostValue { return scriptRootNode(b.core()); }},
    {u"sceneMaterials", [](B& b) { return scriptMaterials(b.core()); }},
    {u"environmentMap", [](B&) -> HostValue { return {}; }},
};

HostValue loadMaxFile(B& b, const Arguments& arguments) {
  const std::u16string path = asText(arguments[0], u"loadMaxFile");
  return b.core().IsSceneFile(path) && b.core().LoadFromFile(path, 0);
}

HostValue setRenderType(B& b, const Arguments& arguments) {
  b.renderType() = asText(arguments[0], u"setRenderType");
  return HostOk{};
}

constexpr hostkit::bindings::Function<B> kFunctions[] = {
    {u"loadMaxFile", 1, loadMaxFile},
    {u"resetMaxFile", kAnyCount,
     [](B& b, const Arguments&) -> HostValue {
       b.core().ResetScene(1);
       return HostOk{};
     }},
    {u"getRenderType", 0,
     [](B& b, const Arguments&) -> HostValue { return hostkit::script::HostName{b.renderType()}; }},
    {u"setRenderType", 1, setRenderType},
};

}  // namespace

HostValue eventParameter(const host::EventParameter& parameter) {
  if (const auto* path = std::get_if<std::u16string>(&parameter)) return *path;
  if (const auto* time = std::get_if<hostsdk::TimeValue>(&parameter)) return HostTime{*time};
  return {};
}

ScriptBindings::ScriptBindings(host::Core& core, std::function<void(const std::string&)> log)
    : core_(core), log_(std::move(log)) {}

std::span<const hostkit::bindings::Property<B>> ScriptBindings::properties() { return kGlobals; }
std::span<const hostkit::bindings::Function<B>> ScriptBindings::functions() { return kFunctions; }

std::vector<std::u16string> ScriptBindings::propertyNames() const {
  std::vector<std::u16string> names = TableObject::propertyNames();
  for (std::u16string& name : settings_.names()) names.push_back(std::move(name));
  return names;
}

std::optional<HostValue> ScriptBindings::get(std::u16string_view name) {
  auto value = TableObject::get(name);
  return value ? value : settings_.get(name);
}

bool ScriptBindings::set(std::u16string_view name, const HostValue& value) {
  return TableObject::set(name, value) || settings_.set(name, value, ticksPerFrame());
}

std::vector<std::shared_ptr<hostkit::script::HostObject>> ScriptBindings::nodes() { return scriptNodes(core_); }

HostInterval ScriptBindings::activeSegment() {
  const scene::Scene& scene = core_.live().description();
  return {scene.firstFrame * ticksPerFrame(), scene.lastFrame * ticksPerFrame()};
}

void ScriptBindings::log(std::u16string_view text) { log_(hostkit::toUtf8(text)); }

}  // namespace standin::bindings
