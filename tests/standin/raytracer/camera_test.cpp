// Where things appear in the image.
#include <gtest/gtest.h>

#include <cmath>

#include "scenes.h"

namespace standin::raytracer::testing {
namespace {

// A wall across the view at z = -2, wide enough for every ray: its position element tells where each pixel looks.
Picture whereItLooks(FrameRequest r, scene::Transform wall = at({0, 0, -2})) {
  Scene scene;
  addQuad(scene, wall, matt({1, 1, 1}), 50);
  r.samples = 1;
  return renderElement(scene, r, ElementType::position);
}

TEST(Camera, PixelCentresLookWhereFieldOfViewAspectAndShiftSay) {
  struct Case {
    const char* what;
    int width, height;
    float fov, pixelAspect, shiftX, shiftY;
    float left, top;  // on the wall: the image's edges
  };
  const float right60 = 2 * std::tan(0.5236F);
  const Case cases[] = {
      {"square, 90 degrees", 8, 8, 1.5708F, 1, 0, 0, -2, 2},
      {"60 degrees", 8, 8, 1.0472F, 1, 0, 0, -right60, right60},
      {"wide: the field of view is the width's", 16, 8, 1.5708F, 1, 0, 0, -2, 1},
      {"tall", 8, 16, 1.5708F, 1, 0, 0, -2, 4},
      {"wide pixels make a flatter view", 8, 8, 1.5708F, 2, 0, 0, -2, 1},
      {"shifted right by a quarter width", 8, 8, 1.5708F, 1, 0.25F, 0, -1, 2},
      {"shifted up by half a height", 16, 8, 1.5708F, 1, 0, 0.5F, -2, 2},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    FrameRequest r = request(c.width, c.height, viewFrom({0, 0, 0}));
    r.view.fov = c.fov;
    r.view.shiftX = c.shiftX;
    r.view.shiftY = c.shiftY;
    r.pixelAspect = c.pixelAspect;
    const Picture where = whereItLooks(r);
    const float width = 4 * std::tan(c.fov / 2);
    const float height = width * static_cast<float>(c.height) / static_cast<float>(c.width) / c.pixelAspect;
    const float stepX = width / static_cast<float>(c.width), stepY = height / static_cast<float>(c.height);
    for (const int x : {0, c.width - 1}) {
      for (const int y : {0, c.height - 1}) {
        EXPECT_NEAR(where.at(x, y)[0], c.left + (static_cast<float>(x) + 0.5F) * stepX, 2e-3F);
        EXPECT_NEAR(where.at(x, y)[1], c.top - (static_cast<float>(y) + 0.5F) * stepY, 2e-3F);
        EXPECT_NEAR(where.at(x, y)[2], -2, 1e-5F);
      }
    }
  }
}

TEST(Camera, LooksAlongItsNodesAxes) {
  FrameRequest r = request(1, 1, {});
  r.view.worldToCamera = scene::inverse(scene::lookAt({3, 4, 5}, {3, 4, -1}));
  const Picture ahead = whereItLooks(r);
  EXPECT_NEAR(ahead.at(0, 0)[0], 3, 1e-4F);
  EXPECT_NEAR(ahead.at(0, 0)[1], 4, 1e-4F);
  // Turned to look down at the floor.
  r.view.worldToCamera = scene::inverse(scene::lookAt({0, 3, 0}, {1, 0, 0}));
  const Picture below = whereItLooks(r, floorAt(0));
  EXPECT_NEAR(below.at(0, 0)[0], 1, 1e-4F);
  EXPECT_NEAR(below.at(0, 0)[1], 0, 1e-5F);
}

TEST(Camera, DepthRunsAlongTheViewAxisAndNormalsFaceTheViewer) {
  Scene scene;
  addSphere(scene, {0, 0, -5}, 1, matt({1, 1, 1}), 128);
  FrameRequest r = request(9, 9, viewFrom({0, 0, 0}));
  r.view.fov = 0.3F;
  r.samples = 1;
  Renderer renderer(scene);
  const auto pictures = renderElements(
      renderer, r, {ElementType::depth, ElementType::normal, ElementType::position, ElementType::objectId});
  EXPECT_NEAR(pictures[0].at(4, 4)[0], 4, 1e-3F);
  EXPECT_NEAR(pictures[1].at(4, 4)[2], 1, 1e-3F);
  for (const int x : {1, 4, 7}) {
    SCOPED_TRACE(x);
    const float *p = pictures[2].at(x, 2), *n = pictures[1].at(x, 2);
    EXPECT_NEAR(pictures[0].at(x, 2)[0], -p[2], 1e-5F);
    EXPECT_NEAR(n[0], p[0], 2e-3F);
    EXPECT_NEAR(n[1], p[1], 2e-3F);
    EXPECT_NEAR(n[2], p[2] + 5, 2e-3F);
    EXPECT_EQ(pictures[3].at(x, 2)[0], 1);
  }
}

TEST(Camera, CoverageIsTheCoveredShareOfThePixel) {
  Scene scene;
  addQuad(scene, at({1, 0, -1}), glowing({1, 1, 1}));  // covers x >= 0: half of the middle column
  FrameRequest r = request(3, 3, viewFrom({0, 0, 0}));
  for (const int samples : {4, 16, 64}) {
    r.samples = samples;
    Renderer renderer(scene);
    const auto pictures = renderElements(
        renderer, r, {ElementType::alpha, ElementType::emission, ElementType::depth, ElementType::normal});
    EXPECT_EQ(pictures[0].at(0, 1)[3], 0);
    EXPECT_EQ(pictures[0].at(2, 1)[3], 1);
    EXPECT_NEAR(pictures[0].at(1, 1)[3], 0.5F, 0.01F);
    EXPECT_NEAR(pictures[1].at(1, 1)[0], pictures[0].at(1, 1)[3], 1e-6F);  // multiplied by the coverage
    EXPECT_NEAR(pictures[2].at(1, 1)[0], 1, 1e-5F);                        // not multiplied
    EXPECT_NEAR(pictures[3].at(1, 1)[2], 1, 1e-5F);
  }
}

TEST(Camera, DataElementsTellTheNearestSample) {
  Scene scene;
  addQuad(scene, at({1, 0, -1}), matt({1, 1, 1}));
  addQuad(scene, at({0, 0, -3}), matt({1, 1, 1}), 5);
  FrameRequest r = request(3, 3, viewFrom({0, 0, 0}));
  r.samples = 16;
  Renderer renderer(scene);
  const auto pictures = renderElements(renderer, r, {ElementType::depth, ElementType::objectId, ElementType::position});
  for (const int x : {1, 2}) {
    EXPECT_NEAR(pictures[0].at(x, 1)[0], 1, 1e-5F);
    EXPECT_EQ(pictures[1].at(x, 1)[0], 1);
    EXPECT_NEAR(pictures[2].at(x, 1)[2], -1, 1e-5F);
  }
  EXPECT_EQ(pictures[1].at(0, 1)[0], 2);
}

}  // namespace
}  // namespace standin::raytracer::testing
