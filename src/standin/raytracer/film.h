// Turns the samples of a pixel into the values of its elements.
#pragma once

#include "standin/raytracer/frame_request.h"
#include "standin/raytracer/integrator.h"

namespace standin::raytracer {

class PixelSum {
 public:
  void add(const SampleResult& sample);

  // The element's value as Output describes it, for a pixel of `samples` samples. Never a value that is no finite
  // number.
  Vec4 element(scene::ElementType type, int samples) const;

 private:
  float coverage_ = 0;
  Vec3 beauty_, albedo_, directLight_, emission_, normal_;
  Vec3 position_;  // of the nearest sample, as are the next two
  float depth_ = 0;
  int objectId_ = 0;
  bool covered_ = false;
};

// Writes `value` where pixel (x, y) of the full image lies in the output's buffer.
void store(const Output& output, int x, int y, Vec4 value);

}  // namespace standin::raytracer
