#include "support/fake_host.h"

#include <algorithm>
#include <sstream>

namespace support {
namespace {

std::string numberText(float number) {
  std::ostringstream text;
  text << number;
  return text.str();
}

std::string nodeText(hostsdk::INode* node) { return node ? narrow(node->Name()) : "none"; }

std::string regionText(const hostsdk::Rect* region) {
  if (!region) return "none";
  return std::to_string(region->left) + "," + std::to_string(region->top) + "," + std::to_string(region->right) + "," +
         std::to_string(region->bottom);
}

}  // namespace

void FakeDefaultActions::SetDefaultAction(std::uint32_t type, std::uint32_t action, std::uint32_t reserved,
                                          void* reserved2) {
  calls_.note("SetDefaultAction", std::to_string(type) + " " + std::to_string(action) + " " + std::to_string(reserved) +
                                      (reserved2 ? " something" : " none"));
  actions[type] = action;
}

void FakeDefaultActions::GetDefaultAction(std::uint32_t type, std::uint32_t& action) {
  calls_.note("GetDefaultAction", std::to_string(type) + " " + std::to_string(action));
  const auto found = actions.find(type);
  if (found != actions.end()) action = found->second;
}

int FakeDefaultActions::MessageCount(std::uint32_t type) {
  return calls_.note("MessageCount", std::to_string(type)).value_or(static_cast<int>(messages[type].size()));
}

std::u16string FakeDefaultActions::MessageText(std::uint32_t type, int index) {
  calls_.note("MessageText", std::to_string(type) + " " + std::to_string(index));
  return messages[type].at(static_cast<std::size_t>(index));
}

void FakeGamma::Enable(int on) { calls_.note("Enable", std::to_string(on)); }
void FakeGamma::SetFileInGamma(float gamma) { calls_.note("SetFileInGamma", numberText(gamma)); }
void FakeGamma::SetFileOutGamma(float gamma) { calls_.note("SetFileOutGamma", numberText(gamma)); }

bool FakePathConfig::LoadPathConfiguration(const std::u16string& file) {
  return calls_.note("LoadPathConfiguration", narrow(file)).value_or(1) != 0;
}

bool FakePathConfig::MergePathConfiguration(const std::u16string& file) {
  return calls_.note("MergePathConfiguration", narrow(file)).value_or(1) != 0;
}

void FakeSystemLog::LogEntry(Level level, bool showDialog, const std::u16string& title, const std::u16string& text) {
  static constexpr const char* kLevels[] = {"error", "warning", "info", "debug"};
  calls_.note("LogEntry", std::string(kLevels[static_cast<int>(level)]) + (showDialog ? " dialog " : " quiet ") +
                              narrow(title) + ": " + narrow(text));
}

void FakeCore::SetTime(hostsdk::TimeValue newTime, bool redraw) {
  calls_.note("SetTime", std::to_string(newTime) + (redraw ? " redraw" : ""));
  time = newTime;
}

bool FakeCore::IsSceneFile(const std::u16string& path) {
  return calls_.note("IsSceneFile", narrow(path)).value_or(isSceneFile ? 1 : 0) != 0;
}

bool FakeCore::LoadFromFile(const std::u16string& path, std::uint32_t flags) {
  return calls_.note("LoadFromFile", narrow(path) + " " + std::to_string(flags)).value_or(loads ? 1 : 0) != 0;
}

void FakeCore::ResetScene(int noPrompt) { calls_.note("ResetScene", std::to_string(noPrompt)); }

hostsdk::IDefaultActionSystem* FakeCore::DefaultActionSystem() {
  calls_.note("DefaultActionSystem");
  return &defaultActions;
}

hostsdk::ViewExp* FakeCore::ActiveViewport() {
  calls_.note("ActiveViewport");
  return &viewports.at(activeViewport);
}

hostsdk::ViewExp* FakeCore::Viewport(int index) {
  const auto answer = calls_.note("Viewport", std::to_string(index));
  return answer && *answer == 0 ? nullptr : &viewports.at(static_cast<std::size_t>(index));
}

hostsdk::INode* FakeCore::NodeByName(const std::u16string& name) {
  calls_.note("NodeByName", narrow(name));
  const auto found = std::find_if(nodes.begin(), nodes.end(), [&](const FakeNode& node) { return node.name == name; });
  return found == nodes.end() ? nullptr : &*found;
}

void FakeCore::SetRenderSaveFile(bool save) {
  calls_.note("SetRenderSaveFile", save ? "1" : "0");
  renderSaveFile = save;
}

void FakeCore::SetRenderWidth(int width) {
  renderWidth = calls_.note("SetRenderWidth", std::to_string(width)).value_or(width);
}

void FakeCore::SetRenderHeight(int height) {
  renderHeight = calls_.note("SetRenderHeight", std::to_string(height)).value_or(height);
}

hostsdk::Renderer* FakeCore::CurrentRenderer(bool create) {
  const auto answer = calls_.note("CurrentRenderer", create ? "create" : "");
  return hasRenderer && answer.value_or(1) != 0 ? &renderer : nullptr;
}

void FakeCore::SetupRendParams(hostsdk::RendParams& params, hostsdk::ViewExp* view, int renderType) {
  calls_.note("SetupRendParams", std::string(view ? "view " : "none ") + std::to_string(renderType));
  params = {renderType, renderWidth, renderHeight, renderPixelAspect, ticksPerFrame};
}

int FakeCore::OpenCurRenderer(hostsdk::INode* camera, hostsdk::ViewExp* view, int renderType, int width, int height) {
  return calls_
      .note("OpenCurRenderer", nodeText(camera) + (view ? " view " : " none ") + std::to_string(renderType) + " " +
                                   std::to_string(width) + "x" + std::to_string(height))
      .value_or(1);
}

int FakeCore::CurRendererRenderFrame(hostsdk::TimeValue frameTime, hostsdk::Bitmap* bitmap,
                                     hostsdk::RendProgressCallback* callback, float frameDuration,
                                     hostsdk::ViewParams* view, const hostsdk::Rect* region) {
  const auto answer = calls_.note("CurRendererRenderFrame", std::to_string(frameTime) + " " + bitmapLabel(bitmap) +
                                                                " duration " + numberText(frameDuration) +
                                                                (view ? " view" : " none") + " " + regionText(region));
  if (callback) {
    for (const ProgressStep& step : progress) {
      if (step.title) callback->SetTitle(step.title->c_str());
      if (step.total >= 0) progressAnswers.push_back(callback->Progress(step.done, step.total));
    }
  }
  if (answer && *answer == 0) return 0;
  if (auto* fake = dynamic_cast<FakeBitmap*>(bitmap)) {
    if (fake->Storage()) fake->storage().fill([&](int x, int y) { return color(x, y, frameTime); });
  }
  for (const auto& element : elements.elements) {
    auto* fake = dynamic_cast<FakeBitmap*>(element->output.bitmap);
    if (elements.active && element->enabled && fake && fake->Storage()) fake->storage().fill(element->color);
  }
  return answer.value_or(1);
}

void FakeCore::CloseCurRenderer() { calls_.note("CloseCurRenderer"); }

FakeNode& FakeCore::addNode(const std::u16string& name, hostsdk::Object* object) {
  return nodes.emplace_back(calls_, name, object);
}

FakeCamera& FakeCore::addCamera() { return cameras_.emplace_back(calls_); }
FakeMultipassEffect& FakeCore::addEffect() { return effects_.emplace_back(calls_); }

FakeHost::FakeHost(hostsdk::ScriptRuntime* scripts)
    : before_(hostsdk::bindHost({&core, &bitmaps, &gamma, &pathConfig, &log, scripts})) {}

FakeHost::~FakeHost() { hostsdk::bindHost(before_); }

}  // namespace support
