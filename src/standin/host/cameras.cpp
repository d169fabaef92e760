#include "standin/host/cameras.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "hostsdk/bitmap.h"
#include "standin/scene/animation.h"

namespace standin::host {
namespace {

// A camera does not inherit its node's scale.
scene::Transform withoutScale(const scene::Transform& t) {
  const auto column = [&](std::size_t i) { return scene::Vec3{t.m[i], t.m[4 + i], t.m[8 + i]}; };
  const scene::Vec3 z = scene::normalize(column(2));
  const scene::Vec3 x = scene::normalize(scene::cross(column(1), z));
  const scene::Vec3 y = scene::cross(z, x);
  return {{x.x, y.x, z.x, t.m[3], x.y, y.y, z.y, t.m[7], x.z, y.z, z.z, t.m[11]}};
}

}  // namespace

hostsdk::ViewParams cameraView(const scene::Scene& scene, int node, double ticks, double imageAspect) {
  scene::Camera camera;
  const int index = scene.nodes[static_cast<std::size_t>(node)].camera;
  if (index != scene::kNone) camera = scene.cameras[static_cast<std::size_t>(index)];
  const double aspect = camera.aspect > 0 ? camera.aspect : imageAspect;
  hostsdk::ViewParams view;
  view.worldToCamera = scene::inverse(withoutScale(scene::worldTransform(scene, node, ticks))).m;
  view.fov = static_cast<float>(2 * std::atan(std::tan(camera.yfov / 2.0) * aspect));
  return view;
}

hostsdk::ViewParams viewportView(const scene::ViewportSettings& viewport) {
  hostsdk::ViewParams view;
  view.worldToCamera = scene::inverse(scene::lookAt(viewport.eye, viewport.target)).m;
  view.fov = viewport.fov * std::numbers::pi_v<float> / 180.0F;
  return view;
}

namespace {

constexpr hostsdk::Class_ID kDepthOfFieldClass{0x2c6f1a41, 0x55d07b1e};
constexpr hostsdk::Class_ID kMotionBlurClass{0x4be31c93, 0x19f2ac05};

// The vertical field of view that belongs to a horizontal one, radians.
float verticalFov(float horizontalFov, double imageAspect) {
  return static_cast<float>(2 * std::atan(std::tan(horizontalFov / 2.0) / imageAspect));
}

class Effect : public hostsdk::IMultiPassCameraEffect {
 public:
  Effect(const scene::MultipassSettings& settings, const EffectScene& scene) : settings_(settings), scene_(scene) {}

  hostsdk::Class_ID ClassID() const override { return {settings_.classId.first, settings_.classId.second}; }
  int TotalPasses(hostsdk::TimeValue) override { return settings_.passes; }

  hostsdk::ViewParams* SetupPass(hostsdk::INode*, hostsdk::CameraObject*, int pass, hostsdk::TimeValue& time) override {
    view_ = passView(pass, time);
    view_.pass = pass;
    return &view_;
  }

  void AccumulateBitmap(hostsdk::Bitmap* destination, hostsdk::Bitmap* source, int, hostsdk::TimeValue) override {
    if (!destination || !source || !destination->Storage() || !source->Storage()) return;
    const int width = std::min(destination->Width(), source->Width());
    const int height = std::min(destination->Height(), source->Height());
    const float share = 1.0F / static_cast<float>(settings_.passes);
    std::vector<hostsdk::ColorFloat> sum(static_cast<std::size_t>(width)), row(static_cast<std::size_t>(width));
    for (int y = 0; y < height; ++y) {
      destination->Storage()->GetLinearPixels(0, y, width, sum.data());
      source->Storage()->GetLinearPixels(0, y, width, row.data());
      for (std::size_t x = 0; x < sum.size(); ++x) {
        sum[x].r += row[x].r * share;
        sum[x].g += row[x].g * share;
        sum[x].b += row[x].b * share;
        sum[x].a += row[x].a * share;
      }
      destination->Storage()->PutLinearPixels(0, y, width, sum.data());
    }
  }

  void Finish() override {}

 protected:
  virtual hostsdk::ViewParams passView(int pass, hostsdk::TimeValue& time) = 0;
  const scene::MultipassSettings& settings() const { return settings_; }
  const EffectScene& scene() const { return scene_; }

 private:
  scene::MultipassSettings settings_;
  const EffectScene& scene_;
  hostsdk::ViewParams view_;
};

class PlainPasses : public Effect {
 public:
  using Effect::Effect;

 protected:
  hostsdk::ViewParams passView(int, hostsdk::TimeValue& time) override { return scene().viewAt(time); }
};

class DepthOfField : public Effect {
 public:
  using Effect::Effect;
  hostsdk::Class_ID ClassID() const override { return kDepthOfFieldClass; }

 protected:
  hostsdk::ViewParams passView(int pass, hostsdk::TimeValue& time) override {
    hostsdk::ViewParams view = scene().viewAt(time);
    const double radius = settings().aperture * std::sqrt((pass + 0.5) / settings().passes);
    const double angle = pass * std::numbers::pi * (3 - std::sqrt(5.0));  // the golden angle
    const auto x = static_cast<float>(radius * std::cos(angle));
    const auto y = static_cast<float>(radius * std::sin(angle));
    view.worldToCamera[3] -= x;
    view.worldToCamera[7] -= y;
    const float across = 2 * settings().focusDistance * std::tan(view.fov / 2);
    const float down = 2 * settings().focusDistance * std::tan(verticalFov(view.fov, scene().imageAspect()) / 2);
    view.shiftX -= x / across;
    view.shiftY -= y / down;
    return view;
  }
};

class MotionBlur : public Effect {
 public:
  using Effect::Effect;
  hostsdk::Class_ID ClassID() const override { return kMotionBlurClass; }

 protected:
  hostsdk::ViewParams passView(int pass, hostsdk::TimeValue& time) override {
    const double share = (pass + 0.5) / settings().passes - 0.5;
    time += static_cast<hostsdk::TimeValue>(std::lround(share * settings().duration * scene().ticksPerFrame()));
    return scene().viewAt(time);
  }
};

}  // namespace

std::unique_ptr<hostsdk::IMultiPassCameraEffect> makeEffect(const scene::MultipassSettings& settings,
                                                            const EffectScene& scene) {
  switch (settings.kind) {
    case scene::EffectKind::depthOfField:
      return std::make_unique<DepthOfField>(settings, scene);
    case scene::EffectKind::motionBlur:
      return std::make_unique<MotionBlur>(settings, scene);
    case scene::EffectKind::other:
      break;
  }
  return std::make_unique<PlainPasses>(settings, scene);
}

}  // namespace standin::host
