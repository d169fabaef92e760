// Sample points of a pixel: Owen-scrambled Sobol points, taken in the order of a Z-shaped walk over the image, so that
// a pixel's points are well spread among themselves and with those of its neighbours. They depend on the pixel's
// coordinates in the full image and on the frame and pass numbers alone.
//
// Burley, "Practical Hash-based Owen Scrambling" (2020); Ahmed and Wonka, "Screen-Space Blue-Noise Diffusion" (2020).
#pragma once

#include <cstdint>

#include "standin/raytracer/vector.h"

namespace standin::raytracer {

// What a pair of random numbers is used for: each use has a pattern of its own.
enum class SampleUse : std::uint32_t { pixel, reflection, sky };

class PixelSampler {
 public:
  // `samplesPerPixel` at least 1.
  PixelSampler(int x, int y, std::uint32_t frame, std::uint32_t pass, int samplesPerPixel);

  // Both numbers are in [0, 1). Point `index` of `perSample` that the sample `sample` takes for one use.
  Vec2 point(SampleUse use, int sample, int index = 0, int perSample = 1) const;

 private:
  std::uint32_t zIndex_, seed_;
  std::uint32_t logSamples_;  // samples a pixel, rounded up to a power of two
};

}  // namespace standin::raytracer
