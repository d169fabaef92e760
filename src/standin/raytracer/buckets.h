// The squares that an image is rendered in.
#pragma once

#include <vector>

#include "standin/raytracer/frame_request.h"

namespace standin::raytracer {

// The side length of squares whose work takes a few milliseconds, in pixels; `raysPerPixel` is a guess of the work.
int bucketSize(double raysPerPixel);

// Squares of side `size` that tile `region` row by row, cut off at its edges. Empty for an empty region.
std::vector<Region> makeBuckets(const Region& region, int size);

}  // namespace standin::raytracer
