#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "standin/host/cameras.h"

namespace standin::host {
namespace {

// Where a world point lands in the image, from -0.5 to 0.5 of its width and height.
scene::Vec2 project(const hostsdk::ViewParams& view, scene::Vec3 p, double aspect) {
  const scene::Vec3 c = scene::transformPoint(scene::Transform{view.worldToCamera}, p);
  const double across = 2 * std::tan(view.fov / 2);
  return {static_cast<float>(c.x / -c.z / across - view.shiftX),
          static_cast<float>(c.y / -c.z / (across / aspect) - view.shiftY)};
}

class FixedScene : public EffectScene {
 public:
  hostsdk::ViewParams viewAt(double ticks) const override {
    hostsdk::ViewParams view;
    view.worldToCamera[11] = static_cast<float>(-10 + ticks / 4800);  // one metre a second towards the origin
    view.fov = 0.9F;
    return view;
  }
  double imageAspect() const override { return 1.6; }
  int ticksPerFrame() const override { return 160; }
};

TEST(CameraView, FieldsOfViewFollowTheImage) {
  scene::Scene scene;
  scene.cameras.push_back({"c", std::numbers::pi_v<float> / 2, 0, 0.01F, 0, {0, 0}, std::nullopt});
  scene.nodes.emplace_back();
  scene.nodes[0].camera = 0;
  scene.nodes[0].translation = {1, 2, 3};
  scene.nodes[0].scale = {5, 5, 5};
  const auto view = cameraView(scene, 0, 0, 2.0);
  EXPECT_NEAR(view.fov, 2 * std::atan(2.0), 1e-6);
  const scene::Vec3 ahead = scene::transformPoint(scene::Transform{view.worldToCamera}, {1, 2, 2});
  EXPECT_NEAR(ahead.z, -1, 1e-6) << "a camera does not inherit its node's scale";
  scene.cameras[0].aspect = 1;
  EXPECT_NEAR(cameraView(scene, 0, 0, 2.0).fov, std::numbers::pi / 2, 1e-6) << "a camera's own aspect wins";
}

TEST(DepthOfField, KeepsTheFocusPlaneStill) {
  const FixedScene scene;
  scene::MultipassSettings settings;
  settings.passes = 16;
  settings.focusDistance = 4;
  settings.aperture = 0.5F;
  const auto effect = makeEffect(settings, scene);
  ASSERT_EQ(effect->TotalPasses(0), 16);
  double sumX = 0, sumY = 0;
  const scene::Vec3 focused{0.7F, -0.4F, 6}, behind{0.7F, -0.4F, 0};
  const auto still = scene.viewAt(0);
  float spread = 0;
  for (int pass = 0; pass < 16; ++pass) {
    hostsdk::TimeValue time = 0;
    const auto* view = effect->SetupPass(nullptr, nullptr, pass, time);
    EXPECT_EQ(view->pass, pass);
    EXPECT_EQ(time, 0);
    const auto a = project(still, focused, 1.6), b = project(*view, focused, 1.6);
    EXPECT_NEAR(a.x, b.x, 1e-5);
    EXPECT_NEAR(a.y, b.y, 1e-5);
    spread = std::max(spread, std::abs(project(still, behind, 1.6).x - project(*view, behind, 1.6).x));
    sumX += view->worldToCamera[3];
    sumY += view->worldToCamera[7];
  }
  EXPECT_GT(spread, 0.01F) << "what is out of focus moves";
  EXPECT_NEAR(sumX / 16, 0, 0.05) << "the lens samples lie around its centre";
  EXPECT_NEAR(sumY / 16, 0, 0.05);
}

TEST(MotionBlur, SpreadsThePassesOverTheShutter) {
  const FixedScene scene;
  scene::MultipassSettings settings;
  settings.kind = scene::EffectKind::motionBlur;
  settings.passes = 4;
  settings.duration = 0.5F;
  const auto effect = makeEffect(settings, scene);
  std::vector<hostsdk::TimeValue> times;
  for (int pass = 0; pass < 4; ++pass) {
    hostsdk::TimeValue time = 1600;
    const auto* view = effect->SetupPass(nullptr, nullptr, pass, time);
    EXPECT_NEAR(view->worldToCamera[11], -10 + time / 4800.0, 1e-5);
    times.push_back(time);
  }
  EXPECT_EQ(times, (std::vector<hostsdk::TimeValue>{1570, 1590, 1610, 1630}));
}

}  // namespace
}  // namespace standin::host
