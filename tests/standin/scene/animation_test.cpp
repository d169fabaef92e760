// Tracks, node transforms, and the vector helpers below them.
#include "standin/scene/animation.h"

#include <gtest/gtest.h>

#include <cmath>

#include "scene_builder.h"
#include "standin/scene/loader.h"
#include "support/temporary_folder.h"

namespace standin::scene::test {
namespace {

constexpr float kHalf = 0.70710678F;  // sine and cosine of 45 degrees

void expectVec(Vec3 got, Vec3 expected, const char* what = "") {
  EXPECT_NEAR(got.x, expected.x, 1e-5F) << what;
  EXPECT_NEAR(got.y, expected.y, 1e-5F) << what;
  EXPECT_NEAR(got.z, expected.z, 1e-5F) << what;
}

// A scene of one node whose property moves through the keys.
Scene animated(const char* path, const char* interpolation, const std::vector<float>& times,
               const std::vector<float>& values) {
  SceneBuilder builder;
  const std::string type = std::string(path) == "rotation" ? "VEC4" : "VEC3";
  builder.add("animations", {{"samplers",
                              {{{"input", builder.floats(times, "SCALAR")},
                                {"output", builder.floats(values, type)},
                                {"interpolation", interpolation}}}},
                             {"channels",
                              {{{"sampler", 0}, {"target", {{"node", 0}, {"path", path}}}},
                               // A channel for an extension's target names no node and is nothing to us.
                               {{"sampler", 0}, {"target", {{"path", "translation"}}}}}}});
  builder.add("nodes", {{"translation", {7, 7, 7}}});
  builder.json["scenes"][0]["nodes"] = {0};
  const support::TemporaryFolder folder;
  return loadScene({folder.write("a.gltf", builder.gltf()), {}, {}, {}});
}

Vec3 originAt(const Scene& scene, double ticks) { return transformPoint(worldTransform(scene, 0, ticks), {0, 0, 0}); }

TEST(Animation, StepHoldsLinearBlendsAndBothEndsHold) {
  const std::vector<float> times{1, 2, 4}, values{0, 0, 0, 2, 0, 0, 2, 8, 0};
  const struct {
    double seconds;
    Vec3 step, linear;
  } cases[] = {{-5, {0, 0, 0}, {0, 0, 0}},      {0, {0, 0, 0}, {0, 0, 0}},
               {1.25, {0, 0, 0}, {0.5F, 0, 0}}, {1.9999, {0, 0, 0}, {1.9998F, 0, 0}},
               {2, {2, 0, 0}, {2, 0, 0}},       {2.5, {2, 0, 0}, {2, 2, 0}},
               {4, {2, 8, 0}, {2, 8, 0}},       {9, {2, 8, 0}, {2, 8, 0}}};
  const Scene step = animated("translation", "STEP", times, values);
  const Scene linear = animated("translation", "LINEAR", times, values);
  for (const auto& c : cases) {
    expectVec(originAt(step, c.seconds * kTicksPerSecond), c.step, "step");
    expectVec(originAt(linear, c.seconds * kTicksPerSecond), c.linear, "linear");
  }
  expectVec(originAt(linear, 4800.5), {2 * 0.5F / 4800, 0, 0}, "between two ticks");
}

TEST(Animation, CubicFollowsItsTangentsScaledByTheKeyDistance) {
  // From 0 to 1 over 2 seconds, leaving at 3 a second and arriving at rest: p(1/2) = 1/2 + (1/8) * 2 * 3.
  const Scene scene = animated("translation", "CUBICSPLINE", {0, 2},
                               {9, 9, 9, 0, 0, 0, 3, 0, 0,  //
                                0, 0, 0, 1, 0, 0, 9, 9, 9});
  expectVec(originAt(scene, 0), {0, 0, 0});
  expectVec(originAt(scene, 4800), {1.25F, 0, 0});
  expectVec(originAt(scene, 9600), {1, 0, 0});
}

TEST(Animation, RotationsTurnEvenlyAndTheShorterWay) {
  // A quarter turn about y, its end written with the opposite sign.
  const Scene scene = animated("rotation", "LINEAR", {0, 1}, {0, 0, 0, 1, 0, -kHalf, 0, -kHalf});
  const Vec3 turned = transformVector(worldTransform(scene, 0, 1600), {0, 0, 1});
  expectVec(turned, {0.5F, 0, std::sqrt(0.75F)}, "a third of 90 degrees");
  // Cubic rotations are brought back to unit length.
  const Scene cubic = animated("rotation", "CUBICSPLINE", {0, 1}, {0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0,  //
                                                                   0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0});
  EXPECT_NEAR(length(transformVector(worldTransform(cubic, 0, 2400), {0, 0, 1})), 1, 1e-5F);
}

TEST(Animation, ParentsCarryTheirChildrenInAnyFileOrder) {
  SceneBuilder builder;
  builder.add("nodes", {{"name", "Hand"}, {"translation", {1, 0, 0}}});
  builder.add("nodes", {{"name", "Arm"}, {"translation", {0, 2, 0}}, {"scale", {2, 2, 2}}, {"children", {0}}});
  // A quarter turn about z, as a column-major matrix.
  builder.add("nodes",
              {{"name", "Body"}, {"matrix", {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 5, 0, 0, 1}}, {"children", {1}}});
  builder.json["scenes"][0]["nodes"] = {2};
  const support::TemporaryFolder folder;
  const Scene scene = loadScene({folder.write("a.gltf", builder.gltf()), {}, {}, {}});
  const std::vector<Transform> all = worldTransforms(scene, 0);
  for (int node = 0; node < 3; ++node)
    EXPECT_EQ(all.at(static_cast<std::size_t>(node)), worldTransform(scene, node, 0));
  expectVec(transformPoint(all[0], {0, 0, 0}), {3, 2, 0});
  expectVec(transformPoint(all[0], {1, 0, 0}), {3, 4, 0});
}

TEST(Animation, TheFirstOfTwoAnimationsOfAPropertyCounts) {
  SceneBuilder builder;
  const int times = builder.floats({0, 1}, "SCALAR");
  for (const float end : {1.0F, 2.0F})
    builder.add("animations",
                {{"samplers", {{{"input", times}, {"output", builder.floats({0, 0, 0, end, 0, 0}, "VEC3")}}}},
                 {"channels", {{{"sampler", 0}, {"target", {{"node", 0}, {"path", "translation"}}}}}}});
  builder.add("nodes", nlohmann::json::object());
  builder.json["scenes"][0]["nodes"] = {0};
  const support::TemporaryFolder folder;
  const Scene scene = loadScene({folder.write("a.gltf", builder.gltf()), {}, {}, {}});
  expectVec(originAt(scene, 4800), {1, 0, 0});
  EXPECT_EQ(scene.warnings.size(), 1U);
}

TEST(Math, InverseUndoesAndNormalsStayAcrossTheirSurface) {
  const Transform t = fromTranslationRotationScale({1, 2, 3}, {0, kHalf, 0, kHalf}, {2, 3, -4});
  const Vec3 p{0.3F, -0.2F, 0.9F};
  expectVec(transformPoint(inverse(t), transformPoint(t, p)), p);
  EXPECT_EQ(inverse(fromTranslationRotationScale({1, 2, 3}, {}, {1, 0, 1})), Transform{}) << "singular";
  const Vec3 u{1, 1, 0}, v{0, 1, 1}, normal = transformNormal(t, cross(u, v));
  EXPECT_NEAR(dot(normal, transformVector(t, u)), 0, 1e-5F);
  EXPECT_NEAR(dot(normal, transformVector(t, v)), 0, 1e-5F);
  EXPECT_NEAR(length(normal), 1, 1e-5F);
  // The side a normal points to is kept even by a mirroring.
  const Transform mirror = fromTranslationRotationScale({0, 0, 0}, {}, {1, 1, -1});
  expectVec(transformNormal(mirror, {0, 0, 1}), {0, 0, -1});
}

TEST(Math, LookAtAimsDownMinusZEvenStraightDown) {
  for (const Vec3 target : {Vec3{0, 0, 0}, Vec3{1, 5, 5}, Vec3{3, 4, 5}}) {
    const Vec3 eye{1, 9, 5};
    const Transform t = lookAt(eye, target);
    expectVec(transformPoint(t, {0, 0, 0}), eye);
    expectVec(transformVector(t, {0, 0, -1}), normalize(target - eye));
    EXPECT_NEAR(length(transformVector(t, {0, 1, 0})), 1, 1e-5F);
    EXPECT_GE(transformVector(t, {0, 1, 0}).y, -1e-5F);
  }
}

}  // namespace
}  // namespace standin::scene::test
