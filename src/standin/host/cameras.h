// What the cameras of a scene show: views as renderers take them, and the multipass effects that move them, depth of
// field and motion blur by accumulating passes.
#pragma once

#include <memory>

#include "hostsdk/scene.h"
#include "standin/scene/description.h"

namespace standin::host {

// The view of a camera node at a time, for an image of this shape (width by height as it is shown, pixel aspect
// included). A node without a camera gives the view of a camera with default settings.
hostsdk::ViewParams cameraView(const scene::Scene& scene, int node, double ticks, double imageAspect);

// A viewport's own view: its eye and target.
hostsdk::ViewParams viewportView(const scene::ViewportSettings& viewport);

// What an effect asks of the scene that its camera lives in.
class EffectScene {
 public:
  virtual ~EffectScene() = default;
  // The view of the effect's camera at a time, for the image that is being rendered.
  virtual hostsdk::ViewParams viewAt(double ticks) const = 0;
  virtual double imageAspect() const = 0;
  virtual int ticksPerFrame() const = 0;
};

// The effect that `settings` describe; `scene` is borrowed and must outlive it.
//
// Depth of field moves the camera over the lens disc (a sunflower pattern of `passes` points) and shifts the projection
// window so that the plane at focusDistance stays where it is: the thin-lens model. Motion blur spreads the passes'
// times evenly over `duration` frames around the frame's time. Any other class renders `passes` equal passes.
// Accumulation is the passes' mean.
std::unique_ptr<hostsdk::IMultiPassCameraEffect> makeEffect(const scene::MultipassSettings& settings,
                                                            const EffectScene& scene);

}  // namespace standin::host
