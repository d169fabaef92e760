// Renderers, render elements, and the callback through which a renderer reports.
#pragma once

#include <cstdint>
#include <string>

#include "hostsdk/api.h"
#include "hostsdk/bitmap.h"
#include "hostsdk/types.h"

namespace hostsdk {

// Render types: what of the picture a renderer is opened for.
inline constexpr int kRenderTypeWhole = 1;   // the whole size, whatever region is rendered
inline constexpr int kRenderTypeRegion = 4;  // the region is the picture

// Filled by the host when a render is set up.
struct RendParams {
  int renderType = 0;
  int width = 0, height = 0;  // pixels
  float pixelAspect = 1.0F;
  TimeValue frameDuration = 0;
};

// Requirement codes a renderer may report.
inline constexpr int kRequirementSavesOutput = 2;  // it writes its own output file
inline constexpr int kRequirementFloatOutput = 3;  // it wants 32-bit float output

class HOSTSDK_API Renderer {
 public:
  virtual ~Renderer();
  virtual Class_ID ClassID() const = 0;
  virtual bool HasRequirement(int requirement) const = 0;
};

// A render element's own output: the description (its name is the element's file name) and the bitmap rendered into.
struct ElementOutput {
  BitmapInfo info;
  Bitmap* bitmap = nullptr;
};

class HOSTSDK_API IRenderElement {
 public:
  virtual ~IRenderElement();
  virtual bool IsEnabled() const = 0;
  virtual std::u16string ElementName() const = 0;
  // Writes a reference to the element's own record into `slot`; leaves it null when the element has none.
  virtual void GetOutput(ElementOutput*& slot) = 0;
};

class HOSTSDK_API IRenderElementMgr {
 public:
  virtual ~IRenderElementMgr();
  virtual bool ElementsActive() const = 0;
  virtual int NumRenderElements() const = 0;
  virtual IRenderElement* GetRenderElement(int index) = 0;
};

// What a renderer tells while it works. Called on the thread that called CurRendererRenderFrame.
class HOSTSDK_API RendProgressCallback {
 public:
  virtual ~RendProgressCallback();
  virtual void SetTitle(const char16_t* title) = 0;
  // 1: go on; 0: abort the render.
  virtual int Progress(int done, int total) = 0;
  virtual void SetCurrentField(int field);
  virtual void SetSceneStatistics(int lights, int rayTraced, int shadows, int objects, int faces);
  virtual void SetStep(int current, int total);
};

}  // namespace hostsdk
