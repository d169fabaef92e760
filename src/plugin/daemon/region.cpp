#include "plugin/daemon/region.h"

#include <limits>
#include <string>
#include <utility>

namespace corvantis {
namespace {

template <class Wide>
std::int32_t inRange(Wide value, const char* textOtherwise) {
  if (value < static_cast<Wide>(std::numeric_limits<std::int32_t>::min()) ||
      value > static_cast<Wide>(std::numeric_limits<std::int32_t>::max()))
    throw RegionError(textOtherwise);
  return static_cast<std::int32_t>(value);
}

template <class Wide>
std::int32_t edge(Wide value) {
  return inRange(value, "The region with its padding is outside the range of pixel coordinates.");
}

std::int32_t side(double value) {
  return inRange(value, "BLOWUP would need an output outside the range of pixel coordinates.");
}

// The edge, and how far it lay outside.
std::pair<std::int32_t, std::int32_t> cutBelowZero(std::int32_t value) {
  if (value >= 0) return {value, 0};
  return {0, edge(-std::int64_t{value})};
}
std::pair<std::int32_t, std::int32_t> cutAbove(std::int32_t value, std::int32_t limit) {
  if (value <= limit) return {value, 0};
  return {limit, edge(std::int64_t{value} - limit)};
}

}  // namespace

Blowup blowUp(const RegionRectangle& region, OutputSize output) {
  const std::int64_t width = std::int64_t{region.right} - region.left;
  if (width == 0) throw RegionError("Left and Right are equal, so BLOWUP has no scale.");
  const double scale = static_cast<double>(output.width) / static_cast<double>(width);
  Blowup result;
  result.output = {side(output.width * scale), side(output.height * scale)};
  const std::int32_t left = edge(region.left * scale), top = edge(region.top * scale);
  result.region = {left, top, edge(std::int64_t{left} + output.width), edge(std::int64_t{top} + output.height)};
  return result;
}

RegionRectangle padded(const RegionRectangle& region, std::int32_t padding) {
  return {edge(std::int64_t{region.left} - padding), edge(std::int64_t{region.top} - padding),
          edge(std::int64_t{region.right} + padding), edge(std::int64_t{region.bottom} + padding)};
}

ClampedRegion clamped(const RegionRectangle& region, OutputSize output) {
  const auto [left, leftOver] = cutBelowZero(region.left);
  const auto [top, topOver] = cutBelowZero(region.top);
  const auto [right, rightOver] = cutAbove(region.right, output.width);
  const auto [bottom, bottomOver] = cutAbove(region.bottom, output.height);
  return {{left, top, right, bottom}, {leftOver, topOver, rightOver, bottomOver}};
}

}  // namespace corvantis
