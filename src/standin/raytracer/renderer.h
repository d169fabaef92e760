// Ray-traces frames of a scene. Meshes are taken over once, when the renderer is made; everything else of the scene
// (node placement and visibility, lights, materials) is read anew for every frame, so scripts may change it between
// frames.
//
// A pixel depends on its coordinates in the full image, on the frame and pass numbers and on the scene, and on nothing
// else: regions, bucket order and thread count do not change a bit of it.
#pragma once

#include <cstdint>
#include <memory>

#include "standin/raytracer/frame_request.h"
#include "standin/scene/description.h"

namespace standin::raytracer {

// Of the last frame.
struct FrameStatistics {
  int lights = 0, objects = 0, faces = 0;  // visible ones; an object is a placed mesh
  std::uint64_t cameraRays = 0, shadowRays = 0, skyRays = 0, reflectionRays = 0;
};

class Renderer {
 public:
  // Keeps a reference to `scene`, whose meshes and images must not change while the renderer lives. Works on `threads`
  // threads, at most as many as the machine runs at once; 0: as many. Throws std::runtime_error "Ray tracer: " + the
  // library's text when it cannot be set up.
  explicit Renderer(const scene::Scene& scene, int threads = 0);
  ~Renderer();
  Renderer(const Renderer&) = delete;
  Renderer& operator=(const Renderer&) = delete;

  // Renders on this thread and on others; returns when all of them are done. True: every pixel is written. False:
  // aborted, and pixels that were not reached are as before. Throws std::invalid_argument for sizes below 1 or an
  // output buffer that does not hold the pixels to render, std::runtime_error as the constructor, and with the text of
  // SharedWork::run after a machine fault on one of the other threads. After such a fault, or one on this thread that
  // the caller has left by a jump, the next call takes the scene over anew. One call at a time.
  bool render(const FrameRequest& request, const FrameCallbacks& callbacks = {});

  const FrameStatistics& statistics() const { return statistics_; }

 private:
  class Implementation;

  const scene::Scene& scene_;
  int threads_;
  std::unique_ptr<Implementation> implementation_;  // null between a fault and the next render, if at all
  FrameStatistics statistics_;
};

}  // namespace standin::raytracer
