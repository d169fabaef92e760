#include "standin/raytracer/sky.h"

namespace standin::raytracer {

namespace {
constexpr Vec3 kZenith{0.60F, 0.74F, 0.98F};
constexpr Vec3 kHorizon{0.80F, 0.82F, 0.84F};
constexpr Vec3 kGround{0.20F, 0.18F, 0.16F};
}  // namespace

Sky::Sky(float level) {
  // The polynomial that passes through the three colours.
  const Vec3 mean = (kZenith + kGround) * 0.5F;
  c2_ = (mean - kHorizon) * (level / 1.5F);
  c1_ = (kZenith - kGround) * (level * 0.5F);
  c0_ = mean * level - c2_;
}

}  // namespace standin::raytracer
