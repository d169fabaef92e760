// Numbers too small for the normal form count as zero while this object lives. The processor keeps that mode for every
// thread apart, so each task sets it, and gives the thread back as it found it.
#pragma once

#include <pmmintrin.h>
#include <xmmintrin.h>

namespace standin::raytracer {

class FlushToZero {
 public:
  FlushToZero() : previous_(_mm_getcsr()) { _mm_setcsr(previous_ | _MM_FLUSH_ZERO_ON | _MM_DENORMALS_ZERO_ON); }
  ~FlushToZero() { _mm_setcsr(previous_); }
  FlushToZero(const FlushToZero&) = delete;
  FlushToZero& operator=(const FlushToZero&) = delete;

 private:
  unsigned int previous_;
};

}  // namespace standin::raytracer
