#include "standin/host/camera_view.h"

#include <cmath>
#include <numbers>

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

float verticalFov(float horizontalFov, double imageAspect) {
  return static_cast<float>(2 * std::atan(std::tan(horizontalFov / 2.0) / imageAspect));
}

}  // namespace standin::host
