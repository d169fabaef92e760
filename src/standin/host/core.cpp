#include "standin/host/core.h"

#include <utility>

#include "hostkit/text/utf8.h"
#include "platform/files.h"
#include "standin/scene/loader.h"

namespace standin::host {
namespace {

// The host port's type of a scene's problem.
std::uint32_t typeOf(scene::LoadProblem::Kind kind) {
  switch (kind) {
    case scene::LoadProblem::Kind::missingTexture:
      return hostsdk::kTypeMissingExternalFiles;
    case scene::LoadProblem::Kind::missingTexCoords:
      return hostsdk::kTypeMissingUvws;
    case scene::LoadProblem::Kind::missingPlugin:
      return hostsdk::kTypeMissingDllFiles;
    case scene::LoadProblem::Kind::missingXref:
      return hostsdk::kTypeMissingXrefFiles;
  }
  return 0;
}

// The scene of a host that has opened nothing: one viewport.
scene::Scene emptyScene() {
  scene::Scene scene;
  scene.viewports.emplace_back();
  return scene;
}

}  // namespace

Core::Core(const hostkit::services::PathConfiguration& paths, std::function<void(const std::string&)> log,
           std::function<void(const std::string&)> listen)
    : paths_(paths), log_(std::move(log)), listen_(std::move(listen)), actions_(log_) {
  adopt(emptyScene());
}

Core::~Core() = default;

void Core::tell(const char* event, const EventParameter& parameter) const {
  if (onEvent) onEvent(event, parameter);
}

void Core::adopt(scene::Scene scene) {
  open_.reset();
  renderer_.reset();
  live_ = std::make_unique<LiveScene>(std::move(scene), shape_);
  output_ = hostsdk::BitmapInfo();
  if (!settings().output.empty()) output_.SetName(platform::windowsPath(settings().output));
  time_ = live_->description().firstFrame * TicksPerFrame();
}

int Core::TicksPerFrame() const { return scene::ticksPerFrame(live_->description()); }

void Core::SetTime(hostsdk::TimeValue time, bool) { time_ = time; }

bool Core::IsSceneFile(const std::u16string& path) { return scene::looksLikeScene(platform::nativePath(path)); }

bool Core::LoadFromFile(const std::u16string& path, std::uint32_t) {
  actions_.beginLoad();
  if (onLoad) onLoad();
  tell("filePreOpen", path);
  adopt(emptyScene());
  try {
    scene::Scene scene = scene::loadScene(
        {platform::nativePath(path), paths_.textureFolders(), paths_.xrefFolders(), paths_.pluginFolders()});
    for (const std::string& warning : scene.warnings) listen_("Warning: " + warning);
    if (!acceptProblems(scene)) return false;
    adopt(std::move(scene));
  } catch (const scene::SceneError& e) {
    log_(e.what());
    return false;
  }
  tell("filePostOpen", path);
  return true;
}

bool Core::acceptProblems(const scene::Scene& scene) {
  bool accepted = true;
  for (const scene::LoadProblem& problem : scene.problems)
    accepted = actions_.accept(typeOf(problem.kind), problem.message) && accepted;
  return accepted;
}

void Core::ResetScene(int) {
  tell("systemPreReset");
  adopt(emptyScene());
  tell("systemPostReset");
}

hostsdk::ViewExp* Core::ActiveViewport() { return live_->viewport(live_->description().activeViewport); }

int Core::RenderUsesActiveViewport() const { return live_->description().lockedViewport == scene::kNone ? 1 : 0; }

int Core::LockedViewportIndex() const { return live_->description().lockedViewport; }

hostsdk::Renderer* Core::CurrentRenderer(bool create) {
  if (!renderer_ && create) renderer_ = std::make_unique<SceneRenderer>(settings());
  return renderer_.get();
}

void Core::SetupRendParams(hostsdk::RendParams& params, hostsdk::ViewExp*, int renderType) {
  params.renderType = renderType;
  params.width = RenderWidth();
  params.height = RenderHeight();
  params.pixelAspect = RenderPixelAspect();
  params.frameDuration = TicksPerFrame();
}

int Core::OpenCurRenderer(hostsdk::INode* camera, hostsdk::ViewExp* view, int renderType, int width, int height) {
  if (width < 1 || height < 1) return 0;
  shape_ = {width, height, RenderPixelAspect()};
  tell("preRender");
  try {
    open_ = std::make_unique<OpenRenderer>(*live_, camera, view, renderType, shape_, CurrentRenderer(true)->ClassID());
  } catch (const std::exception& e) {
    log_(std::string("The renderer cannot be opened: ") + e.what());
    return 0;
  }
  return 1;
}

int Core::CurRendererRenderFrame(hostsdk::TimeValue time, hostsdk::Bitmap* bitmap,
                                 hostsdk::RendProgressCallback* progress, float, hostsdk::ViewParams* view,
                                 const hostsdk::Rect* region) {
  if (!open_ || !bitmap || !bitmap->Storage()) return 0;
  tell("preRenderFrame", time);
  try {
    if (!open_->renderFrame(time, *bitmap, progress, view, region)) return 0;
    // A renderer that saves its own output does so here.
    if (CurrentRenderer(true)->HasRequirement(hostsdk::kRequirementSavesOutput) && RenderSaveFile()) {
      const hostsdk::BitmapInfo info = bitmap->Info();
      if (bitmap->OpenOutput(info) != hostsdk::kBitmapSuccess) return 0;
      if (bitmap->Write(info, hostsdk::kSingleFrame) != hostsdk::kBitmapSuccess) return 0;
      bitmap->Close(info, 0);
    }
  } catch (const std::exception& e) {
    log_(std::string("The frame cannot be rendered: ") + e.what());
    return 0;
  }
  tell("postRenderFrame", time);
  return 1;
}

void Core::CloseCurRenderer() {
  if (!open_) return;
  open_.reset();
  tell("postRender");
}

}  // namespace standin::host
