#include "standin/raytracer/camera.h"

namespace standin::raytracer {

Camera::Camera(const View& view, int width, int height, float pixelAspect) {
  const Transform& toCamera = view.worldToCamera;
  const Transform toWorld = scene::inverse(toCamera);
  origin_ = {toWorld.m[3], toWorld.m[7], toWorld.m[11]};
  xAxis_ = transformVector(toWorld, {1, 0, 0});
  yAxis_ = transformVector(toWorld, {0, 1, 0});
  zAxis_ = transformVector(toWorld, {0, 0, 1});
  depthRow_ = Vec3{toCamera.m[8], toCamera.m[9], toCamera.m[10]} * -1.0F;
  depthOffset_ = -toCamera.m[11];

  const float halfWidth = std::tan(view.fov / 2);
  const float halfHeight = halfWidth * static_cast<float>(height) / (static_cast<float>(width) * pixelAspect);
  stepX_ = 2 * halfWidth / static_cast<float>(width);
  stepY_ = 2 * halfHeight / static_cast<float>(height);
  left_ = halfWidth * (2 * view.shiftX - 1);
  top_ = halfHeight * (2 * view.shiftY + 1);
}

}  // namespace standin::raytracer
