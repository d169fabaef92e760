// The scene's lights at one moment, as KHR_lights_punctual describes them: they shine from a point or a direction.
#pragma once

#include <optional>
#include <vector>

#include "standin/raytracer/vector.h"
#include "standin/scene/description.h"

namespace standin::raytracer {

// What a light sends to one point.
struct Illumination {
  Vec3 toLight;     // unit direction
  float distance;   // infinite for a directional light
  Vec3 irradiance;  // on a surface that faces the light, lux
};

class PlacedLight {
 public:
  PlacedLight(const scene::Light& light, const Transform& nodeToWorld);

  // None where the light does not reach: beyond its range, outside its cone, at its very place.
  std::optional<Illumination> at(Vec3 position) const;

 private:
  scene::Light::Kind kind_;
  Vec3 color_;  // times intensity
  Vec3 position_, direction_;
  float range_;
  float coneScale_ = 0, coneOffset_ = 1;  // angle factor: saturate(cosine * scale + offset), squared
};

// The visible lights that send anything. `worldTransforms` has one for each node.
std::vector<PlacedLight> placeLights(const scene::Scene& scene, const std::vector<Transform>& worldTransforms);

}  // namespace standin::raytracer
