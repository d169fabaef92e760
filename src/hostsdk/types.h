// Identifiers, times and small values that every header of the host port shares.
#pragma once

#include <compare>
#include <cstdint>
#include <limits>

namespace hostsdk {

// Scene time in ticks; 4800 a second.
using TimeValue = std::int32_t;
inline constexpr int kTicksPerSecond = 4800;

// A stretch of time, both ends included. Empty (the default): both ends at the smallest time.
struct Interval {
  TimeValue start = std::numeric_limits<TimeValue>::min();
  TimeValue end = std::numeric_limits<TimeValue>::min();
};

// The pair of numbers that the host gives every plug-in class.
struct Class_ID {
  std::uint32_t partA = 0;
  std::uint32_t partB = 0;
  auto operator<=>(const Class_ID&) const = default;
};

// The pair of numbers that names a published interface. The default names none.
struct Interface_ID {
  std::uint32_t partA = 0xFFFFFFFF;
  std::uint32_t partB = 0xFFFFFFFF;
  auto operator<=>(const Interface_ID&) const = default;
};

// Pixels of the render output, right and bottom exclusive.
struct Rect {
  std::int32_t left = 0, top = 0, right = 0, bottom = 0;
};

// Host version constant returned by a plug-in's LibVersion: release 22000, API 55, revision 0.
inline constexpr std::uint32_t kHostVersion = 0x55F03700;

}  // namespace hostsdk
