// A host application for tests: it answers from plain fields, writes every call down, and fails, throws or faults where
// a test says so (see CallLog::on; the hook's name is the host operation's own, such as "LoadFromFile").
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "hostsdk/core_interface.h"
#include "hostsdk/services.h"
#include "support/call_log.h"
#include "support/fake_bitmap.h"
#include "support/fake_scene.h"

namespace support {

class FakeDefaultActions : public hostsdk::IDefaultActionSystem {
 public:
  explicit FakeDefaultActions(CallLog& calls) : calls_(calls) {}
  void SetDefaultAction(std::uint32_t type, std::uint32_t action, std::uint32_t reserved, void* reserved2) override;
  void GetDefaultAction(std::uint32_t type, std::uint32_t& action) override;
  int MessageCount(std::uint32_t type) override;
  std::u16string MessageText(std::uint32_t type, int index) override;

  std::map<std::uint32_t, std::uint32_t> actions;  // a type without an entry leaves the caller's value alone
  std::map<std::uint32_t, std::vector<std::u16string>> messages;

 private:
  CallLog& calls_;
};

class FakeGamma : public hostsdk::GammaMgr {
 public:
  explicit FakeGamma(CallLog& calls) : calls_(calls) {}
  void Enable(int on) override;
  void SetFileInGamma(float gamma) override;
  void SetFileOutGamma(float gamma) override;

 private:
  CallLog& calls_;
};

class FakePathConfig : public hostsdk::IPathConfigMgr {
 public:
  explicit FakePathConfig(CallLog& calls) : calls_(calls) {}
  bool LoadPathConfiguration(const std::u16string& file) override;
  bool MergePathConfiguration(const std::u16string& file) override;

 private:
  CallLog& calls_;
};

class FakeSystemLog : public hostsdk::LogSys {
 public:
  explicit FakeSystemLog(CallLog& calls) : calls_(calls) {}
  void LogEntry(Level level, bool showDialog, const std::u16string& title, const std::u16string& text) override;

 private:
  CallLog& calls_;
};

// One report of the renderer: a title when there is one, then progress when total is not negative.
struct ProgressStep {
  std::optional<std::u16string> title;
  int done = 0, total = -1;
};

class FakeCore : public hostsdk::Interface14 {
 public:
  explicit FakeCore(CallLog& calls) : defaultActions(calls), calls_(calls) {}

  int TicksPerFrame() const override { return ticksPerFrame; }
  hostsdk::TimeValue GetTime() const override { return time; }
  void SetTime(hostsdk::TimeValue newTime, bool redraw) override;
  bool IsSceneFile(const std::u16string& path) override;
  bool LoadFromFile(const std::u16string& path, std::uint32_t flags) override;
  void ResetScene(int noPrompt) override;
  hostsdk::IDefaultActionSystem* DefaultActionSystem() override;
  hostsdk::ViewExp* ActiveViewport() override;
  hostsdk::ViewExp* Viewport(int index) override;
  hostsdk::INode* NodeByName(const std::u16string& name) override;
  bool RenderSaveFile() const override { return renderSaveFile; }
  void SetRenderSaveFile(bool save) override;
  const hostsdk::BitmapInfo& RenderOutput() const override { return renderOutput; }
  bool RenderSkipExisting() const override { return renderSkipExisting; }
  int RenderWidth() const override { return renderWidth; }
  int RenderHeight() const override { return renderHeight; }
  void SetRenderWidth(int width) override;  // hook answer: the size that the host takes instead
  void SetRenderHeight(int height) override;
  float RenderPixelAspect() const override { return renderPixelAspect; }
  hostsdk::Renderer* CurrentRenderer(bool create) override;
  hostsdk::IRenderElementMgr* RenderElementManager() override { return &elements; }
  void SetupRendParams(hostsdk::RendParams& params, hostsdk::ViewExp* view, int renderType) override;
  int OpenCurRenderer(hostsdk::INode* camera, hostsdk::ViewExp* view, int renderType, int width, int height) override;
  int CurRendererRenderFrame(hostsdk::TimeValue time, hostsdk::Bitmap* bitmap, hostsdk::RendProgressCallback* progress,
                             float frameDuration, hostsdk::ViewParams* view, const hostsdk::Rect* region) override;
  void CloseCurRenderer() override;
  int RenderUsesActiveViewport() const override { return usesActiveViewport ? 1 : 0; }
  int LockedViewportIndex() const override { return lockedViewportIndex; }

  // A node that NodeByName finds. Its object is borrowed.
  FakeNode& addNode(const std::u16string& name, hostsdk::Object* object);
  FakeCamera& addCamera();
  FakeMultipassEffect& addEffect();

  int ticksPerFrame = 160;
  hostsdk::TimeValue time = 0;
  bool isSceneFile = true;
  bool loads = true;
  FakeDefaultActions defaultActions;
  std::deque<FakeViewport> viewports{FakeViewport(), FakeViewport(), FakeViewport()};
  std::size_t activeViewport = 0;
  bool usesActiveViewport = true;
  int lockedViewportIndex = -1;
  std::deque<FakeNode> nodes;

  bool renderSaveFile = true;
  hostsdk::BitmapInfo renderOutput;
  bool renderSkipExisting = false;
  int renderWidth = 8, renderHeight = 6;
  float renderPixelAspect = 1.0F;
  bool hasRenderer = true;
  FakeRenderer renderer;
  FakeElementManager elements;

  // What CurRendererRenderFrame does: reports these steps, then fills the bitmap and the enabled elements' bitmaps.
  std::vector<ProgressStep> progress;
  std::vector<int> progressAnswers;
  std::function<hostsdk::ColorFloat(int x, int y, hostsdk::TimeValue time)> color = [](int, int, hostsdk::TimeValue) {
    return hostsdk::ColorFloat{0.5F, 0.5F, 0.5F, 1.0F};
  };

 private:
  CallLog& calls_;
  std::deque<FakeCamera> cameras_;
  std::deque<FakeMultipassEffect> effects_;
};

// Binds itself as the process's host from construction to destruction, then puts the former one back.
class FakeHost {
 public:
  // `scripts` is borrowed; null: no script runtime is bound.
  explicit FakeHost(hostsdk::ScriptRuntime* scripts = nullptr);
  ~FakeHost();
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;

  CallLog calls;
  FakeCore core{calls};
  FakeBitmapManager bitmaps{calls};
  FakeGamma gamma{calls};
  FakePathConfig pathConfig{calls};
  FakeSystemLog log{calls};

 private:
  hostsdk::HostServices before_;
};

}  // namespace support
