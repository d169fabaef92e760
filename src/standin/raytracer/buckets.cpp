#include "standin/raytracer/buckets.h"

#include <algorithm>
#include <cmath>

namespace standin::raytracer {

namespace {
constexpr double kRaysPerBucket = 8000;  // at a few million rays a second and thread
constexpr double kSmallest = 1, kLargest = 64;
}  // namespace

int bucketSize(double raysPerPixel) {
  return static_cast<int>(std::clamp(std::sqrt(kRaysPerBucket / std::max(raysPerPixel, 1.0)), kSmallest, kLargest));
}

std::vector<Region> makeBuckets(const Region& region, int size) {
  std::vector<Region> buckets;
  for (int top = region.top; top < region.bottom; top += size) {
    for (int left = region.left; left < region.right; left += size) {
      buckets.push_back({left, top, std::min(left + size, region.right), std::min(top + size, region.bottom)});
    }
  }
  return buckets;
}

}  // namespace standin::raytracer
