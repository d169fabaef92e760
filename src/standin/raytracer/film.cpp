#include "standin/raytracer/film.h"

namespace standin::raytracer {

namespace {

float finite(float x) { return std::isfinite(x) ? x : 0.0F; }
Vec4 withAlpha(Vec3 v, float alpha) { return {finite(v.x), finite(v.y), finite(v.z), finite(alpha)}; }

}  // namespace

void PixelSum::add(const SampleResult& sample) {
  if (!(sample.coverage > 0)) return;
  coverage_ += sample.coverage;
  beauty_ += sample.beauty;
  albedo_ += sample.albedo;
  directLight_ += sample.directLight;
  emission_ += sample.emission;
  normal_ += sample.normal * sample.coverage;
  if (!covered_ || sample.depth < depth_) {
    depth_ = sample.depth;
    position_ = sample.position;
    objectId_ = sample.objectId;
  }
  covered_ = true;
}

Vec4 PixelSum::element(scene::ElementType type, int samples) const {
  const float share = 1 / static_cast<float>(samples);
  const float alpha = std::min(1.0F, coverage_ * share);
  switch (type) {
    case scene::ElementType::beauty:
      return withAlpha(beauty_ * share, alpha);
    case scene::ElementType::alpha:
      return withAlpha({alpha, alpha, alpha}, alpha);
    case scene::ElementType::depth:
      return withAlpha({depth_, depth_, depth_}, alpha);
    case scene::ElementType::normal:
      return withAlpha(normalize(normal_), alpha);
    case scene::ElementType::albedo:
      return withAlpha(albedo_ * share, alpha);
    case scene::ElementType::position:
      return withAlpha(position_, alpha);
    case scene::ElementType::objectId: {
      const auto id = static_cast<float>(objectId_);
      return withAlpha({id, id, id}, alpha);
    }
    case scene::ElementType::directLight:
      return withAlpha(directLight_ * share, alpha);
    case scene::ElementType::emission:
      return withAlpha(emission_ * share, alpha);
  }
  return {};
}

void store(const Output& output, int x, int y, Vec4 value) {
  const std::size_t row = static_cast<std::size_t>(y - output.top), column = static_cast<std::size_t>(x - output.left);
  float* pixel = output.pixels + (row * static_cast<std::size_t>(output.width) + column) * 4;
  pixel[0] = value.x;
  pixel[1] = value.y;
  pixel[2] = value.z;
  pixel[3] = value.w;
}

}  // namespace standin::raytracer
