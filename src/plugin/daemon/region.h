// The arithmetic of region rendering, in pixels of the render output. Pure functions.
#pragma once

#include <cstdint>
#include <stdexcept>

namespace corvantis {

struct OutputSize {
  std::int32_t width = 0, height = 0;
};

// Right and bottom are exclusive. Nothing says that they lie right of and below left and top.
struct RegionRectangle {
  std::int32_t left = 0, top = 0, right = 0, bottom = 0;
};

// A region that cannot be rendered. The text says why, for the worker to read.
class RegionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Blowup {
  OutputSize output;
  RegionRectangle region;
};

// The enlarged output in which `region` is as wide as `output` is now, and the window of it to render: scaled at its
// top left corner, of the present output's size. The horizontal scale serves both axes; every number is cut toward
// zero. A right that lies left of its left gives an output of negative size, which no renderer opens. Throws
// RegionError when left equals right and when a number leaves the 32-bit range.
Blowup blowUp(const RegionRectangle& region, OutputSize output);

// The region with `padding` pixels on every side. Throws RegionError when an edge leaves the 32-bit range.
RegionRectangle padded(const RegionRectangle& region, std::int32_t padding);

// A region cut at the output's edges, with what was cut off. A left or top beyond the output, or a right or bottom
// before it, is not cut.
struct ClampedRegion {
  RegionRectangle region;
  RegionRectangle over;
};
// Throws RegionError when an over leaves the 32-bit range.
ClampedRegion clamped(const RegionRectangle& region, OutputSize output);

}  // namespace corvantis
