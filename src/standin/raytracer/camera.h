// Turns pixels of the full image into rays.
#pragma once

#include "standin/raytracer/frame_request.h"
#include "standin/raytracer/vector.h"

namespace standin::raytracer {

struct CameraRay {
  Vec3 origin, direction;  // world space, unit direction
};

class Camera {
 public:
  Camera(const View& view, int width, int height, float pixelAspect);

  // The point (x, y) of the image, in pixels from its top left corner.
  CameraRay ray(float x, float y) const {
    const Vec3 local{left_ + x * stepX_, top_ - y * stepY_, -1};
    return {origin_, normalize(xAxis_ * local.x + yAxis_ * local.y + zAxis_ * local.z)};
  }

  // Distance of a world point along the view axis.
  float depth(Vec3 position) const { return dot(depthRow_, position) + depthOffset_; }

  // Width of a pixel at distance 1.
  float pixelWidth() const { return stepX_; }

 private:
  Vec3 origin_, xAxis_, yAxis_, zAxis_;  // of the camera in world space
  Vec3 depthRow_;
  float depthOffset_ = 0;
  float left_ = 0, top_ = 0, stepX_ = 0, stepY_ = 0;  // on the plane at distance 1
};

}  // namespace standin::raytracer
