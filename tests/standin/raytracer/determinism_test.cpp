// The same pixels, bit for bit, however the work is cut up.
#include <gtest/gtest.h>
#include <tbb/global_control.h>
#include <xmmintrin.h>

#include "scenes.h"

namespace standin::raytracer::testing {
namespace {

const std::vector<ElementType> kElements = {ElementType::beauty,   ElementType::alpha,       ElementType::depth,
                                            ElementType::normal,   ElementType::albedo,      ElementType::position,
                                            ElementType::objectId, ElementType::directLight, ElementType::emission};

FrameRequest mixedRequest() {
  FrameRequest r = request(96, 72, viewFrom({0, 0.6F, 1}));
  r.frame = 7;
  return r;
}

std::vector<Picture> renderMixed(int threads) {
  const Scene scene = mixedScene();
  Renderer renderer(scene, threads);
  return renderElements(renderer, mixedRequest(), kElements);
}

void expectSame(const std::vector<Picture>& a, const std::vector<Picture>& b) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) EXPECT_TRUE(a[i].pixels == b[i].pixels) << "element " << i;
}

TEST(Determinism, ThreadsAndRepetitionDoNotMatter) {
  const std::vector<Picture> reference = renderMixed(1);
  expectSame(reference, renderMixed(2));
  expectSame(reference, renderMixed(5));

  const Scene scene = mixedScene();
  Renderer renderer(scene);
  for (int i = 0; i < 3; ++i) expectSame(reference, renderElements(renderer, mixedRequest(), kElements));
}

TEST(Determinism, RegionsAreCutOutOfTheFullImage) {
  const Scene scene = mixedScene();
  Renderer renderer(scene);
  const std::vector<Picture> full = renderElements(renderer, mixedRequest(), kElements);
  for (const Region region :
       {Region{0, 0, 96, 72}, Region{13, 7, 50, 31}, Region{95, 71, 96, 72}, Region{40, 0, 41, 72}}) {
    SCOPED_TRACE(::testing::Message() << region.left << "," << region.top);
    const int width = region.right - region.left, height = region.bottom - region.top;
    for (const bool ownBuffer : {true, false}) {
      Picture picture = ownBuffer ? Picture{width, height, {}} : Picture{96, 72, {}};
      const int left = ownBuffer ? region.left : 0, top = ownBuffer ? region.top : 0;
      picture.pixels.assign(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) * 4, -7);
      FrameRequest r = mixedRequest();
      r.region = region;
      r.outputs = {{ElementType::beauty, picture.pixels.data(), left, top, picture.width, picture.height}};
      ASSERT_TRUE(renderer.render(r));
      for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
          const bool inside =
              x + left >= region.left && x + left < region.right && y + top >= region.top && y + top < region.bottom;
          for (int c = 0; c < 4; ++c) ASSERT_EQ(picture.at(x, y)[c], inside ? full[0].at(x + left, y + top)[c] : -7);
        }
      }
    }
  }
}

TEST(Determinism, FrameAndPassChangeThePatternOnly) {
  const Scene scene = mixedScene();
  Renderer renderer(scene);
  const Picture reference = renderElements(renderer, mixedRequest(), {ElementType::beauty}).front();
  FrameRequest otherFrame = mixedRequest(), otherPass = mixedRequest();
  otherFrame.frame = 8;
  otherPass.pass = 1;
  for (const FrameRequest& other : {otherFrame, otherPass}) {
    const Picture picture = renderElements(renderer, other, {ElementType::beauty}).front();
    EXPECT_FALSE(picture.pixels == reference.pixels);
    double difference = 0, sum = 0;
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
      // Highlights, small and bright, would outweigh all else.
      const float value = std::min(picture.pixels[i], 1.0F), expected = std::min(reference.pixels[i], 1.0F);
      difference += static_cast<double>(value - expected);
      sum += static_cast<double>(expected);
    }
    EXPECT_LT(std::abs(difference), 0.005 * sum);
  }
}

// Where two surfaces coincide the acceleration structure decides which is seen; building it on more threads must not
// change it.
TEST(Determinism, CoincidentSurfacesDoNotDependOnTheBuildThreads) {
  Scene scene;
  addSphere(scene, {0, 0, -3}, 1, glowing({1, 0, 0}), 64);
  addSphere(scene, {0, 0, -3}, 1, glowing({0, 1, 0}), 64);
  scene.meshes[0].primitives.push_back(scene.meshes[1].primitives[0]);
  const FrameRequest r = request(64, 64, viewFrom({0, 0, 0}));
  const Picture many = renderElement(scene, r);
  const tbb::global_control oneThread(tbb::global_control::max_allowed_parallelism, 1);
  EXPECT_TRUE(many.pixels == renderElement(scene, r).pixels);
}

TEST(Determinism, TheCallersFloatModeIsKept) {
  const unsigned int before = _mm_getcsr();
  const Scene scene = mixedScene();
  Renderer renderer(scene);
  FrameRequest r = mixedRequest();
  FrameCallbacks callbacks;
  callbacks.onProgress = [&](int, int) {
    EXPECT_EQ(_mm_getcsr() & 0xFFC0U, before & 0xFFC0U);  // all but the sticky flags
    return true;
  };
  renderer.render(r, callbacks);
  EXPECT_EQ(_mm_getcsr() & 0xFFC0U, before & 0xFFC0U);
}

}  // namespace
}  // namespace standin::raytracer::testing
