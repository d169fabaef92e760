#include "plugin/daemon/region.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <limits>

namespace corvantis {
namespace {

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr OutputSize kOutput{640, 480};

using Edges = std::array<std::int32_t, 4>;
Edges edges(const RegionRectangle& r) { return {r.left, r.top, r.right, r.bottom}; }

bool refused(const std::function<void()>& work) {
  try {
    work();
  } catch (const RegionError&) {
    return true;
  }
  return false;
}

TEST(Region, BlowsUpByTheHorizontalScale) {
  const struct {
    Edges region;
    Edges window;
    OutputSize output;
  } cases[] = {
      {{100, 50, 420, 290}, {200, 100, 840, 580}, {1280, 960}},
      {{0, 0, 640, 480}, {0, 0, 640, 480}, {640, 480}},
      // Twice as wide as the output: half the size.
      {{0, 0, 1280, 10}, {0, 0, 640, 480}, {320, 240}},
      // 640 / 300: products are cut toward zero, also the negative ones.
      {{-1, -1, 299, 7}, {-2, -2, 638, 478}, {1365, 1024}},
      // A sliver of the picture: more than any bitmap holds, though the window is as small as ever.
      {{0, 0, 6, 10}, {0, 0, 640, 480}, {68266, 51200}},
      {{639, 479, 640, 480}, {408960, 306560, 409600, 307040}, {409600, 307200}},
      // Mirrored.
      {{100, 0, 50, 10}, {-1280, 0, -640, 480}, {-8192, -6144}},
      // Less than a pixel.
      {{0, 0, 1000000, 10}, {0, 0, 640, 480}, {0, 0}},
      {{kMin, 0, kMax, 10}, {-320, 0, 320, 480}, {0, 0}},
      // The vertical edges take no part in the scale.
      {{10, 7, 650, 7}, {10, 7, 650, 487}, {640, 480}},
  };
  for (const auto& c : cases) {
    const Blowup blown = blowUp({c.region[0], c.region[1], c.region[2], c.region[3]}, kOutput);
    EXPECT_EQ(edges(blown.region), c.window);
    EXPECT_EQ(blown.output.width, c.output.width);
    EXPECT_EQ(blown.output.height, c.output.height);
  }
}

TEST(Region, RefusesABlowupWithoutADefinedAnswer) {
  const struct {
    RegionRectangle region;
    OutputSize output;
  } cases[] = {
      {{100, 0, 100, 10}, kOutput},          // no scale
      {{0, 0, 1, 10}, {65536, 480}},         // an output 4294967296 pixels wide
      {{0, 0, 1, 10}, {40000, 65536}},       // or high
      {{kMax - 320, 0, kMax, 10}, kOutput},  // the window leaves the 32-bit range
      {{0, kMin, 320, 10}, kOutput},
  };
  for (const auto& c : cases) EXPECT_TRUE(refused([&] { blowUp(c.region, c.output); })) << c.region.left;
}

TEST(Region, PaddingAndClampingAddUp) {
  const struct {
    Edges region;
    std::int32_t padding;
    Edges cut, over;
  } cases[] = {
      {{0, 0, 100, 100}, 10, {0, 0, 110, 110}, {10, 10, 0, 0}},
      {{0, 0, 640, 480}, 0, {0, 0, 640, 480}, {0, 0, 0, 0}},
      {{5, 5, 635, 475}, 10, {0, 0, 640, 480}, {5, 5, 5, 5}},
      {{20, 30, 40, 50}, -5, {25, 35, 35, 45}, {0, 0, 0, 0}},
      {{kMin + 1, 0, kMax, kMax}, 0, {0, 0, 640, 480}, {kMax, 0, kMax - 640, kMax - 480}},
      // Edges on the far side of the output are left alone.
      {{700, 500, -3, -4}, 0, {700, 500, -3, -4}, {0, 0, 0, 0}},
  };
  for (const auto& c : cases) {
    const ClampedRegion cut = clamped(padded({c.region[0], c.region[1], c.region[2], c.region[3]}, c.padding), kOutput);
    EXPECT_EQ(edges(cut.region), c.cut);
    EXPECT_EQ(edges(cut.over), c.over);
  }
}

TEST(Region, RefusesEdgesOutsideTheirRange) {
  EXPECT_TRUE(refused([] { padded({kMin, 0, 0, 0}, 1); }));
  EXPECT_TRUE(refused([] { padded({0, kMin, 0, 0}, 1); }));
  EXPECT_TRUE(refused([] { padded({0, 0, kMax, 0}, 1); }));
  EXPECT_TRUE(refused([] { padded({0, 0, 0, kMin}, -1); }));
  EXPECT_TRUE(refused([] { clamped({kMin, 0, 0, 0}, kOutput); }));
  EXPECT_TRUE(refused([] { clamped({0, 0, kMax, 0}, {-2, 480}); }));
}

}  // namespace
}  // namespace corvantis
