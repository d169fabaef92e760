#include "standin/raytracer/lights.h"

#include <limits>

namespace standin::raytracer {

namespace {
constexpr float kSmallestDistance = 1e-3F;  // metres: where the inverse square stops growing
}

PlacedLight::PlacedLight(const scene::Light& light, const Transform& nodeToWorld)
    : kind_(light.kind),
      color_(light.color * light.intensity),
      position_{nodeToWorld.m[3], nodeToWorld.m[7], nodeToWorld.m[11]},
      direction_(normalize(transformVector(nodeToWorld, {0, 0, -1}))),
      range_(light.range) {
  if (kind_ == scene::Light::Kind::spot) {
    const float inner = std::cos(light.innerCone), outer = std::cos(light.outerCone);
    coneScale_ = 1 / std::max(0.001F, inner - outer);
    coneOffset_ = -outer * coneScale_;
  }
}

std::optional<Illumination> PlacedLight::at(Vec3 position) const {
  if (kind_ == scene::Light::Kind::directional) {
    return Illumination{-direction_, std::numeric_limits<float>::infinity(), color_};
  }
  const Vec3 offset = position_ - position;
  const float squared = dot(offset, offset);
  if (!(squared > 0)) return std::nullopt;
  const float distance = std::sqrt(squared);
  const Vec3 toLight = offset * (1 / distance);
  float factor = 1 / std::max(squared, kSmallestDistance * kSmallestDistance);
  if (range_ > 0) {
    const float r = distance / range_, r2 = r * r;
    factor *= saturate(1 - r2 * r2);
  }
  if (kind_ == scene::Light::Kind::spot) {
    const float cone = saturate(-dot(direction_, toLight) * coneScale_ + coneOffset_);
    factor *= cone * cone;
  }
  if (!(factor > 0)) return std::nullopt;
  return Illumination{toLight, distance, color_ * factor};
}

std::vector<PlacedLight> placeLights(const scene::Scene& scene, const std::vector<Transform>& worldTransforms) {
  std::vector<PlacedLight> lights;
  for (std::size_t i = 0; i < scene.nodes.size(); ++i) {
    const scene::Node& node = scene.nodes[i];
    if (!node.visible || node.light < 0 || static_cast<std::size_t>(node.light) >= scene.lights.size()) continue;
    const scene::Light& light = scene.lights[static_cast<std::size_t>(node.light)];
    if (!light.on) continue;
    const Vec3 sent = light.color * light.intensity;
    if (largest(sent) > 0 && isFinite(sent)) lights.emplace_back(light, worldTransforms[i]);
  }
  return lights;
}

}  // namespace standin::raytracer
