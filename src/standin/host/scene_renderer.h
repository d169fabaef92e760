// The scene's renderer: its identity, and rendering frames into the host's bitmaps.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "hostsdk/core_interface.h"
#include "standin/host/live_scene.h"
#include "standin/raytracer/renderer.h"

namespace standin::host {

// Which renderer a scene asks for: its class, and the requirements it answers yes to.
class SceneRenderer : public hostsdk::Renderer {
 public:
  explicit SceneRenderer(const scene::RenderSettings& settings);
  hostsdk::Class_ID ClassID() const override { return classId_; }
  bool HasRequirement(int requirement) const override;

 private:
  hostsdk::Class_ID classId_;
  std::vector<int> requirements_;
};

// The stand-in's own renderer, "default" in scene settings; "A", "B" and "C" are those of hostkit/services.
inline constexpr hostsdk::Class_ID kRendererDefault{0x1c5a7e20, 0x3b94d6f1};

// The renderer while it is open.
class OpenRenderer {
 public:
  // `live` is borrowed. A null camera means the view. std::runtime_error when the ray tracer cannot be set up.
  OpenRenderer(LiveScene& live, hostsdk::INode* camera, hostsdk::ViewExp* view, int renderType, const ImageShape& shape,
               hostsdk::Class_ID renderer);

  // Renders into `bitmap` and the bitmaps of the enabled elements; false when aborted. std::runtime_error: the bitmap
  // fits neither the image nor the region.
  bool renderFrame(hostsdk::TimeValue time, hostsdk::Bitmap& bitmap, hostsdk::RendProgressCallback* progress,
                   const hostsdk::ViewParams* view, const hostsdk::Rect* region);

 private:
  hostsdk::ViewParams ownView(hostsdk::TimeValue time) const;
  void tellPreparation(hostsdk::RendProgressCallback& progress) const;

  LiveScene& live_;
  int cameraNode_;
  const scene::ViewportSettings* viewport_;
  int renderType_;
  ImageShape shape_;
  hostsdk::Class_ID class_;
  raytracer::Renderer tracer_;
};

}  // namespace standin::host
