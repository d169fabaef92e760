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

std::vector<Region> makeBuckets(const Region& region, int size, BucketOrder order) {
  std::vector<Region> buckets;
  for (int top = region.top; top < region.bottom; top += size) {
    for (int left = region.left; left < region.right; left += size) {
      buckets.push_back({left, top, std::min(left + size, region.right), std::min(top + size, region.bottom)});
    }
  }
  if (order == BucketOrder::fromCentre) {
    const auto distance = [&](const Region& bucket) {
      const double x = (bucket.left + bucket.right - region.left - region.right) * 0.5;
      const double y = (bucket.top + bucket.bottom - region.top - region.bottom) * 0.5;
      return x * x + y * y;
    };
    std::stable_sort(buckets.begin(), buckets.end(),
                     [&](const Region& a, const Region& b) { return distance(a) < distance(b); });
  }
  return buckets;
}

}  // namespace standin::raytracer
