// A host that costs nothing: bitmaps without pixels, a renderer that succeeds at once, files that are never written.
// What a frame then takes is the plug-in's own time.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "hostsdk/core_interface.h"
#include "hostsdk/services.h"

namespace bench {

class FreeBitmap : public hostsdk::Bitmap {
 public:
  int Width() const override { return info_.Width(); }
  int Height() const override { return info_.Height(); }
  const hostsdk::BitmapInfo& Info() const override { return info_; }
  hostsdk::BitmapStorage* Storage() override { return nullptr; }
  int PrepareGChannels(const hostsdk::BitmapInfo&) override { return 1; }
  int Display(const char16_t*, int, bool, bool, hostsdk::CropCallback*, hostsdk::Bitmap*) override { return 1; }
  int UnDisplay() override { return 1; }
  std::uint16_t OpenOutput(const hostsdk::BitmapInfo&) override { return hostsdk::kBitmapSuccess; }
  std::uint16_t Write(const hostsdk::BitmapInfo&, int) override { return hostsdk::kBitmapSuccess; }
  int Close(const hostsdk::BitmapInfo&, int) override { return 1; }
  void DeleteThis() override { delete this; }

  explicit FreeBitmap(const hostsdk::BitmapInfo& info) : info_(info) {}

 private:
  ~FreeBitmap() override = default;
  hostsdk::BitmapInfo info_;
};

class FreeBitmapManager : public hostsdk::BitmapManager {
 public:
  hostsdk::Bitmap* Create(const hostsdk::BitmapInfo& info) override { return new FreeBitmap(info); }
};

class FreeElement : public hostsdk::IRenderElement {
 public:
  explicit FreeElement(const std::u16string& file) { output_.info.SetName(file); }
  bool IsEnabled() const override { return true; }
  std::u16string ElementName() const override { return u"element"; }
  void GetOutput(hostsdk::ElementOutput*& slot) override { slot = &output_; }

 private:
  hostsdk::ElementOutput output_;
};

class FreeRenderer : public hostsdk::Renderer {
 public:
  hostsdk::Class_ID ClassID() const override { return {1, 1}; }
  bool HasRequirement(int requirement) const override { return requirement == hostsdk::kRequirementFloatOutput; }
};

class FreeCore : public hostsdk::Interface14, public hostsdk::IRenderElementMgr, public hostsdk::IDefaultActionSystem {
 public:
  hostsdk::BitmapInfo output;
  std::deque<FreeElement> elements;

  int TicksPerFrame() const override { return 160; }
  hostsdk::TimeValue GetTime() const override { return 0; }
  void SetTime(hostsdk::TimeValue, bool) override {}
  bool IsSceneFile(const std::u16string&) override { return true; }
  bool LoadFromFile(const std::u16string&, std::uint32_t) override { return true; }
  void ResetScene(int) override {}
  hostsdk::IDefaultActionSystem* DefaultActionSystem() override { return this; }
  hostsdk::ViewExp* ActiveViewport() override { return nullptr; }
  hostsdk::ViewExp* Viewport(int) override { return nullptr; }
  hostsdk::INode* NodeByName(const std::u16string&) override { return nullptr; }
  bool RenderSaveFile() const override { return true; }
  void SetRenderSaveFile(bool) override {}
  const hostsdk::BitmapInfo& RenderOutput() const override { return output; }
  bool RenderSkipExisting() const override { return true; }
  int RenderWidth() const override { return 1920; }
  int RenderHeight() const override { return 1080; }
  void SetRenderWidth(int) override {}
  void SetRenderHeight(int) override {}
  float RenderPixelAspect() const override { return 1.0F; }
  hostsdk::Renderer* CurrentRenderer(bool) override { return &renderer_; }
  hostsdk::IRenderElementMgr* RenderElementManager() override { return this; }
  void SetupRendParams(hostsdk::RendParams&, hostsdk::ViewExp*, int) override {}
  int OpenCurRenderer(hostsdk::INode*, hostsdk::ViewExp*, int, int, int) override { return 1; }
  int CurRendererRenderFrame(hostsdk::TimeValue, hostsdk::Bitmap*, hostsdk::RendProgressCallback* progress, float,
                             hostsdk::ViewParams*, const hostsdk::Rect*) override {
    progress->SetTitle(u"Rendering image");
    for (int done = 0; done <= 100; ++done) progress->Progress(done, 100);
    return 1;
  }
  void CloseCurRenderer() override {}
  int RenderUsesActiveViewport() const override { return 1; }
  int LockedViewportIndex() const override { return -1; }

  bool ElementsActive() const override { return true; }
  int NumRenderElements() const override { return static_cast<int>(elements.size()); }
  hostsdk::IRenderElement* GetRenderElement(int index) override { return &elements[static_cast<std::size_t>(index)]; }

  void SetDefaultAction(std::uint32_t, std::uint32_t, std::uint32_t, void*) override {}
  void GetDefaultAction(std::uint32_t, std::uint32_t& action) override { action = hostsdk::kActionLog; }
  int MessageCount(std::uint32_t) override { return 0; }
  std::u16string MessageText(std::uint32_t, int) override { return {}; }

 private:
  FreeRenderer renderer_;
};

// Binds itself as the process's host.
class FreeHost {
 public:
  FreeHost() { hostsdk::bindHost({&core, &bitmaps, nullptr, nullptr, nullptr, nullptr}); }
  ~FreeHost() { hostsdk::bindHost({}); }
  FreeHost(const FreeHost&) = delete;
  FreeHost& operator=(const FreeHost&) = delete;

  FreeCore core;
  FreeBitmapManager bitmaps;
};

}  // namespace bench
