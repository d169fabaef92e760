// Multipass camera effects: depth of field and motion blur by accumulating passes.
#pragma once

#include <memory>

#include "hostsdk/scene.h"
#include "standin/scene/description.h"

namespace standin::host {

inline constexpr hostsdk::Class_ID kDepthOfFieldClass{0x2c6f1a41, 0x55d07b1e};
inline constexpr hostsdk::Class_ID kMotionBlurClass{0x4be31c93, 0x19f2ac05};

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
