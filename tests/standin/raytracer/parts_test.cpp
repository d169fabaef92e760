// The parts that pictures hardly tell apart when they are a little wrong: sampling, sky, coat, texture lookup.
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "standin/raytracer/brdf.h"
#include "standin/raytracer/buckets.h"
#include "standin/raytracer/sampler.h"
#include "standin/raytracer/sky.h"
#include "standin/raytracer/texture.h"

namespace standin::raytracer {
namespace {

Vec3 hemisphere(Vec2 u) {  // uniform around +z
  const float radius = std::sqrt(std::max(0.0F, 1 - u.x * u.x)), angle = 2 * kPi * u.y;
  return {radius * std::cos(angle), radius * std::sin(angle), u.x};
}

TEST(Sampler, PointsOfAPixelFallIntoDifferentStrata) {
  for (const int samples : {4, 16, 64}) {
    for (const SampleUse use : {SampleUse::pixel, SampleUse::reflection, SampleUse::sky}) {
      for (int x = 0; x < 20; ++x) {
        const PixelSampler sampler(x, 3 * x + 1, 5, 2, samples);
        const int side = static_cast<int>(std::sqrt(static_cast<float>(samples)));
        std::set<int> columns, rows, cells;
        for (int i = 0; i < samples; ++i) {
          const Vec2 p = sampler.point(use, i);
          ASSERT_TRUE(p.x >= 0 && p.x < 1 && p.y >= 0 && p.y < 1);
          columns.insert(static_cast<int>(p.x * static_cast<float>(samples)));
          rows.insert(static_cast<int>(p.y * static_cast<float>(samples)));
          cells.insert(static_cast<int>(p.x * static_cast<float>(side)) * side +
                       static_cast<int>(p.y * static_cast<float>(side)));
        }
        const auto all = static_cast<std::size_t>(samples);
        ASSERT_TRUE(columns.size() == all && rows.size() == all && cells.size() == all);
      }
    }
  }
}

TEST(Sampler, PixelsFramesPassesAndUsesDiffer) {
  std::set<std::pair<float, float>> seen;
  int points = 0;
  for (const std::uint32_t frame : {0U, 1U}) {
    for (const std::uint32_t pass : {0U, 1U}) {
      for (int x = 0; x < 16; ++x) {
        for (const SampleUse use : {SampleUse::pixel, SampleUse::reflection, SampleUse::sky}) {
          const Vec2 p = PixelSampler(x, 4000 - x, frame, pass, 1).point(use, 0);
          seen.insert({p.x, p.y});
          ++points;
        }
      }
    }
  }
  EXPECT_EQ(seen.size(), static_cast<std::size_t>(points));
}

TEST(Sky, DiffuseLightIsTheIntegralOfItsRadiance) {
  const Sky sky(1);
  const PixelSampler sampler(0, 0, 0, 0, 4096);
  for (const Vec3 normal : {Vec3{0, 1, 0}, Vec3{0, -1, 0}, Vec3{1, 0, 0}, normalize({1, 1, 1})}) {
    const Basis basis(normal);
    Vec3 sum;
    for (int i = 0; i < 4096; ++i) {
      const Vec3 d = hemisphere(sampler.point(SampleUse::sky, i));
      sum += sky.radiance(basis.toWorld(d)) * (d.z * 2 / 4096);  // over pi, of a density of 1 / 2 pi
    }
    const Vec3 expected = sky.diffuse(normal);
    EXPECT_NEAR(sum.x, expected.x, 2e-3F);
    EXPECT_NEAR(sum.y, expected.y, 2e-3F);
    EXPECT_NEAR(sum.z, expected.z, 2e-3F);
  }
}

// The coat as it is sampled, evaluated and tabled must be the same coat.
TEST(Coat, SampledEvaluatedAndTabledReflectionsAgree) {
  const PixelSampler sampler(3, 4, 0, 0, 16384);
  const Vec3 normal = normalize({0.3F, -0.5F, 0.6F});
  const Basis basis(normal);
  for (const float roughness : {0.3F, 0.6F, 1.0F}) {
    for (const float cosV : {0.3F, 0.7F, 0.98F}) {
      SCOPED_TRACE(::testing::Message() << "roughness " << roughness << ", cosine " << cosV);
      const Reflectance metal = Reflectance::of({0.9F, 0.6F, 0.3F}, 1, roughness);
      const Vec3 viewer = basis.toWorld({std::sqrt(1 - cosV * cosV), 0, cosV});
      float sampled = 0, evaluated = 0;
      for (int i = 0; i < 16384; ++i) {
        const Vec2 u = sampler.point(SampleUse::reflection, i);
        sampled += sampleCoat(metal, normal, viewer, u).weight.y / 16384;
        const Vec3 light = basis.toWorld(hemisphere(u));
        const float cosL = dot(light, normal);
        if (cosL > 0) evaluated += reflectedLight(metal, normal, light, viewer, cosL, cosV).y * 2 * kPi / 16384;
      }
      EXPECT_LE(sampled, 1);
      EXPECT_NEAR(sampled, evaluated, 0.02F);
      EXPECT_NEAR(sampled, coatAlbedo(metal, cosV).y, 0.015F);
    }
  }
}

TEST(Coat, MirrorReflectsAboutTheNormal) {
  const Vec3 viewer = normalize({1, 2, 3});
  const CoatSample sample = sampleCoat(Reflectance::of({1, 1, 1}, 1, 0), {0, 0, 1}, viewer, {0.3F, 0.6F});
  EXPECT_NEAR(dot(sample.direction, {-viewer.x, -viewer.y, viewer.z}), 1, 1e-5F);
  EXPECT_NEAR(sample.weight.x, 1, 1e-3F);
}

TEST(Texture, FiltersWrapsTransformsAndShrinks) {
  using scene::Texture;
  using Wrap = Texture::Wrap;
  // Red holds the column, green the row: 4 x 2 texels.
  scene::Image image{"", 4, 2, {}};
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 4; ++x) {
      for (const float value : {static_cast<float>(x), static_cast<float>(y), 0.0F, 1.0F})
        image.texels.push_back(value);
    }
  }
  const std::vector<scene::Image> images{image};
  const ImageStore store(images);
  struct Case {
    const char* what;
    Wrap wrap;
    bool nearest;
    Vec2 offset, scale;
    float rotation;
    Vec2 uv;
    float footprint;
    float column, row;
  };
  const Case cases[] = {
      {"texel centre", Wrap::repeat, false, {0, 0}, {1, 1}, 0, {0.375F, 0.25F}, 0, 1, 0},
      {"between two", Wrap::repeat, false, {0, 0}, {1, 1}, 0, {0.5F, 0.5F}, 0, 1.5F, 0.5F},
      {"repeats across the edge", Wrap::repeat, false, {0, 0}, {1, 1}, 0, {1, 0.25F}, 0, 1.5F, 0},
      {"repeats below zero", Wrap::repeat, true, {0, 0}, {1, 1}, 0, {-0.1F, -0.1F}, 0, 3, 1},
      {"clamps", Wrap::clamp, false, {0, 0}, {1, 1}, 0, {7, -7}, 0, 3, 0},
      {"mirrors", Wrap::mirror, true, {0, 0}, {1, 1}, 0, {1.3F, 0.25F}, 0, 2, 0},
      {"mirrors below zero", Wrap::mirror, true, {0, 0}, {1, 1}, 0, {-0.3F, 0.25F}, 0, 1, 0},
      {"nearest", Wrap::repeat, true, {0, 0}, {1, 1}, 0, {0.49F, 0.51F}, 0, 1, 1},
      {"offset", Wrap::repeat, true, {0.25F, 0.5F}, {1, 1}, 0, {0.1F, 0.1F}, 0, 1, 1},
      {"scale", Wrap::repeat, true, {0, 0}, {0.5F, 0.5F}, 0, {0.9F, 0.9F}, 0, 1, 0},
      // Counter-clockwise by a quarter in an image whose v points down: (u, v) becomes (v, -u).
      {"rotation", Wrap::repeat, true, {0, 0}, {1, 1}, kPi / 2, {0.3F, 0.6F}, 0, 2, 1},
      {"the whole image under one sample", Wrap::repeat, false, {0, 0}, {1, 1}, 0, {0.1F, 0.9F}, 1, 1.5F, 0.5F},
      {"half the image under one sample", Wrap::clamp, false, {0, 0}, {1, 1}, 0, {0.1F, 0.5F}, 0.5F, 0.5F, 0.5F},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Texture texture;
    texture.image = 0;
    texture.wrapU = texture.wrapV = c.wrap;
    texture.nearest = c.nearest;
    texture.offset = c.offset;
    texture.scale = c.scale;
    texture.rotation = c.rotation;
    const Vec4 value = TextureLookup(texture, store).sample(c.uv, c.footprint);
    EXPECT_NEAR(value.x, c.column, 1e-4F);
    EXPECT_NEAR(value.y, c.row, 1e-4F);
    EXPECT_EQ(value.w, 1);
  }
}

TEST(Buckets, TileTheRegionOnce) {
  for (const Region region : {Region{0, 0, 40, 30}, Region{3, 5, 36, 6}, Region{7, 7, 8, 8}, Region{5, 5, 5, 9}}) {
    std::set<std::pair<int, int>> seen;
    for (const Region& b : makeBuckets(region, 16)) {
      for (int y = b.top; y < b.bottom; ++y) {
        for (int x = b.left; x < b.right; ++x) EXPECT_TRUE(seen.insert({x, y}).second);
      }
    }
    const int area = std::max(0, region.right - region.left) * (region.bottom - region.top);
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(area));
    if (!seen.empty()) {
      EXPECT_EQ(*seen.begin(), std::pair(region.left, region.top));
    }
  }
  EXPECT_GE(bucketSize(1e9), 1);
  EXPECT_GT(bucketSize(1), bucketSize(100));
}

}  // namespace
}  // namespace standin::raytracer
