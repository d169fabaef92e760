// The stand-in host's core: the scene in memory, its settings, and its renderer.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <variant>

#include "hostkit/services/default_actions.h"
#include "hostkit/services/path_configuration.h"
#include "hostsdk/core_interface.h"
#include "standin/host/live_scene.h"
#include "standin/host/scene_renderer.h"

namespace standin::host {

// What is told with an event: nothing, the scene file's path (a Windows path), or the time of a frame in ticks.
using EventParameter = std::variant<std::monostate, std::u16string, hostsdk::TimeValue>;

class Core : public hostsdk::Interface14 {
 public:
  // `paths` is borrowed. `log` receives host diagnostics, `listen` lines for the script listener.
  Core(const hostkit::services::PathConfiguration& paths, std::function<void(const std::string&)> log,
       std::function<void(const std::string&)> listen);
  ~Core() override;

  // Called with the name of something that has happened ("filePostOpen", "preRender", ...), as scripts know it.
  std::function<void(const char* event, const EventParameter& parameter)> onEvent;
  // Called when a scene load begins.
  std::function<void()> onLoad;

  // Time.
  int TicksPerFrame() const override;
  hostsdk::TimeValue GetTime() const override { return time_; }
  void SetTime(hostsdk::TimeValue time, bool redraw) override;

  // Scene.
  bool IsSceneFile(const std::u16string& path) override;
  bool LoadFromFile(const std::u16string& path, std::uint32_t flags) override;
  void ResetScene(int noPrompt) override;
  hostsdk::IDefaultActionSystem* DefaultActionSystem() override { return &actions_; }
  LiveScene& live() { return *live_; }

  // Views and nodes.
  hostsdk::ViewExp* ActiveViewport() override;
  hostsdk::ViewExp* Viewport(int index) override { return live_->viewport(index); }
  hostsdk::INode* NodeByName(const std::u16string& name) override { return live_->nodeByName(name); }
  int RenderUsesActiveViewport() const override;
  int LockedViewportIndex() const override;

  // Render settings.
  bool RenderSaveFile() const override { return settings().saveFile; }
  void SetRenderSaveFile(bool save) override { settings().saveFile = save; }
  const hostsdk::BitmapInfo& RenderOutput() const override { return output_; }
  void setRenderOutput(const std::u16string& path) { output_.SetName(path); }
  bool RenderSkipExisting() const override { return settings().skipExisting; }
  int RenderWidth() const override { return settings().width; }
  int RenderHeight() const override { return settings().height; }
  void SetRenderWidth(int width) override { settings().width = width; }
  void SetRenderHeight(int height) override { settings().height = height; }
  float RenderPixelAspect() const override { return settings().pixelAspect; }

  // Renderer.
  hostsdk::Renderer* CurrentRenderer(bool create) override;
  hostsdk::IRenderElementMgr* RenderElementManager() override { return live_.get(); }
  void SetupRendParams(hostsdk::RendParams& params, hostsdk::ViewExp* view, int renderType) override;
  int OpenCurRenderer(hostsdk::INode* camera, hostsdk::ViewExp* view, int renderType, int width, int height) override;
  int CurRendererRenderFrame(hostsdk::TimeValue time, hostsdk::Bitmap* bitmap, hostsdk::RendProgressCallback* progress,
                             float frameDuration, hostsdk::ViewParams* view, const hostsdk::Rect* region) override;
  void CloseCurRenderer() override;

 private:
  scene::RenderSettings& settings() const { return live_->description().render; }
  void tell(const char* event, const EventParameter& parameter = {}) const;
  void adopt(scene::Scene scene);
  bool acceptProblems(const scene::Scene& scene);

  const hostkit::services::PathConfiguration& paths_;
  std::function<void(const std::string&)> log_, listen_;
  hostkit::services::DefaultActions actions_;
  ImageShape shape_;
  std::unique_ptr<LiveScene> live_;  // never null
  std::unique_ptr<SceneRenderer> renderer_;
  std::unique_ptr<OpenRenderer> open_;
  hostsdk::BitmapInfo output_;
  hostsdk::TimeValue time_ = 0;
};

}  // namespace standin::host
