// The host core: scene, time, viewports, render settings and the renderer. Called on the host's main thread only.
#pragma once

#include <cstdint>
#include <string>

#include "hostsdk/api.h"
#include "hostsdk/bitmap.h"
#include "hostsdk/render.h"
#include "hostsdk/scene.h"
#include "hostsdk/types.h"

namespace hostsdk {

// Kinds of load problems, and what the host does about them.
inline constexpr std::uint32_t kTypeMissingExternalFiles = 1;
inline constexpr std::uint32_t kTypeMissingDllFiles = 2;
inline constexpr std::uint32_t kTypeMissingXrefFiles = 3;
inline constexpr std::uint32_t kTypeMissingUvws = 4;
// Bits of a default action: write to the host's log, record a message, fail the load (without kActionRecord only).
inline constexpr std::uint32_t kActionLog = 1;
inline constexpr std::uint32_t kActionRecord = 2;
inline constexpr std::uint32_t kActionFail = 4;

class HOSTSDK_API IDefaultActionSystem {
 public:
  virtual ~IDefaultActionSystem();
  // The two last arguments are reserved: 0 and null.
  virtual void SetDefaultAction(std::uint32_t type, std::uint32_t action, std::uint32_t reserved, void* reserved2) = 0;
  virtual void GetDefaultAction(std::uint32_t type, std::uint32_t& action) = 0;
  // Messages recorded for a type since the last load began.
  virtual int MessageCount(std::uint32_t type) = 0;
  virtual std::u16string MessageText(std::uint32_t type, int index) = 0;
};

// Host core, operations present since version 8.
class HOSTSDK_API Interface8 {
 public:
  virtual ~Interface8();

  virtual int TicksPerFrame() const = 0;
  virtual TimeValue GetTime() const = 0;
  virtual void SetTime(TimeValue time, bool redraw) = 0;

  virtual bool IsSceneFile(const std::u16string& path) = 0;
  virtual bool LoadFromFile(const std::u16string& path, std::uint32_t flags) = 0;
  // Leaves an empty scene; 1: without asking the user.
  virtual void ResetScene(int noPrompt) = 0;
  virtual IDefaultActionSystem* DefaultActionSystem() = 0;

  virtual ViewExp* ActiveViewport() = 0;
  virtual ViewExp* Viewport(int index) = 0;
  virtual INode* NodeByName(const std::u16string& name) = 0;

  // Render settings of the scene.
  virtual bool RenderSaveFile() const = 0;
  virtual void SetRenderSaveFile(bool save) = 0;
  virtual const BitmapInfo& RenderOutput() const = 0;
  virtual bool RenderSkipExisting() const = 0;
  virtual int RenderWidth() const = 0;
  virtual int RenderHeight() const = 0;
  virtual void SetRenderWidth(int width) = 0;
  virtual void SetRenderHeight(int height) = 0;
  virtual float RenderPixelAspect() const = 0;

  // The renderer in force; created when there is none and `create` is set.
  virtual Renderer* CurrentRenderer(bool create) = 0;
  virtual IRenderElementMgr* RenderElementManager() = 0;

  virtual void SetupRendParams(RendParams& params, ViewExp* view, int renderType) = 0;
  // Opens the current renderer for a camera or, when it is null, a view. Nonzero on success.
  virtual int OpenCurRenderer(INode* camera, ViewExp* view, int renderType, int width, int height) = 0;
  // Renders into `bitmap` and the enabled elements' bitmaps. `view` and `region` may be null; a region is in pixels of
  // the full output. Nonzero on success.
  virtual int CurRendererRenderFrame(TimeValue time, Bitmap* bitmap, RendProgressCallback* progress,
                                     float frameDuration, ViewParams* view, const Rect* region) = 0;
  virtual void CloseCurRenderer() = 0;
};

// Since version 11.
class HOSTSDK_API Interface11 : public Interface8 {
 public:
  ~Interface11() override;
  // Nonzero: rendering uses the active viewport; 0: the locked one.
  virtual int RenderUsesActiveViewport() const = 0;
};

// Since version 14.
class HOSTSDK_API Interface14 : public Interface11 {
 public:
  ~Interface14() override;
  virtual int LockedViewportIndex() const = 0;
};

// The host core. Each throws MAXException "No host is bound" when there is none.
HOSTSDK_API Interface8* GetCOREInterface8();
HOSTSDK_API Interface11* GetCOREInterface11();
HOSTSDK_API Interface14* GetCOREInterface14();
// Ticks of one frame at the scene's frame rate.
HOSTSDK_API int GetTicksPerFrame();

}  // namespace hostsdk
