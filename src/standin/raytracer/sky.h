// The sky that lights every scene: a soft gradient from the ground over the horizon to the zenith, along y. It is not
// seen by the camera; surfaces are lit by it and reflect it.
//
// Its radiance is a polynomial of degree two in the direction's height, so that light gathered over a half sphere or
// over a glossy lobe is the same polynomial with damped terms (zonal harmonics; Ramamoorthi and Hanrahan 2001).
#pragma once

#include "standin/raytracer/vector.h"

namespace standin::raytracer {

class Sky {
 public:
  // `level` scales its light.
  explicit Sky(float level);

  // From a direction of unit length.
  Vec3 radiance(Vec3 direction) const { return evaluate(direction.y, 1, 1); }

  // Gathered by a matt surface with this normal: irradiance / pi.
  Vec3 diffuse(Vec3 normal) const { return evaluate(normal.y, 2.0F / 3, 1.0F / 4); }

  // Gathered by a glossy lobe around a direction; `alpha` is the squared roughness.
  Vec3 glossy(Vec3 direction, float alpha) const {
    const float width = 0.5F * alpha * alpha;
    return evaluate(direction.y, std::exp(-width), std::exp(-3 * width));
  }

 private:
  Vec3 evaluate(float height, float damp1, float damp2) const {
    const float p2 = 1.5F * height * height - 0.5F;
    const Vec3 sum = c0_ + c1_ * (height * damp1) + c2_ * (p2 * damp2);
    return {std::max(sum.x, 0.0F), std::max(sum.y, 0.0F), std::max(sum.z, 0.0F)};
  }

  Vec3 c0_, c1_, c2_;  // of the Legendre polynomials 1, y, (3 y^2 - 1) / 2
};

}  // namespace standin::raytracer
