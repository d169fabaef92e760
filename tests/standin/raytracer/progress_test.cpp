// What a render tells its caller, and how the caller ends it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csetjmp>
#include <stdexcept>
#include <thread>

#include "scenes.h"

namespace standin::raytracer::testing {
namespace {

using ::testing::ElementsAre;

class Progress : public ::testing::Test {
 protected:
  Progress() {
    request_.outputs = {{ElementType::beauty, picture_.pixels.data(), 0, 0, 128, 96}};
    reference_ = renderElements(renderer_, request(128, 96, request_.view), {ElementType::beauty}).front();
  }

  void expectRendersAgain() {
    ASSERT_TRUE(renderer_.render(request_));
    EXPECT_TRUE(picture_.pixels == reference_.pixels);
  }

  Scene scene_ = mixedScene();
  Renderer renderer_{scene_, 3};
  FrameRequest request_ = request(128, 96, viewFrom({0, 0.6F, 1}));
  Picture picture_{128, 96, std::vector<float>(std::size_t{128} * 96 * 4, -1.0F)};
  Picture reference_;
};

TEST_F(Progress, GrowsFromZeroToTheTotalOnTheCallingThread) {
  std::vector<Phase> phases;
  std::vector<int> counts;
  const auto thisThread = std::this_thread::get_id();
  FrameCallbacks callbacks;
  callbacks.onPhase = [&](Phase phase) {
    EXPECT_EQ(std::this_thread::get_id(), thisThread);
    phases.push_back(phase);
  };
  int expectedTotal = -1;
  callbacks.onProgress = [&](int done, int total) {
    EXPECT_EQ(std::this_thread::get_id(), thisThread);
    if (!counts.empty()) {
      EXPECT_GT(done, counts.back());
    }
    if (expectedTotal < 0) expectedTotal = total;
    EXPECT_EQ(total, expectedTotal);
    counts.push_back(done);
    return true;
  };
  EXPECT_TRUE(renderer_.render(request_, callbacks));
  EXPECT_THAT(phases, ElementsAre(Phase::preparing, Phase::building, Phase::rendering));
  ASSERT_GT(counts.size(), 4U);
  EXPECT_EQ(counts.front(), 0);
  EXPECT_EQ(counts.back(), expectedTotal);
}

TEST_F(Progress, AbortStopsAtOnceAndTheNextRenderIsWhole) {
  for (const int stopAt : {0, 1, 3}) {
    SCOPED_TRACE(stopAt);
    int calls = 0;
    FrameCallbacks callbacks;
    callbacks.onProgress = [&](int, int) { return calls++ < stopAt; };
    EXPECT_FALSE(renderer_.render(request_, callbacks));
    EXPECT_EQ(calls, stopAt + 1);
    expectRendersAgain();
  }
}

TEST_F(Progress, ExceptionsOfTheCallerPassThrough) {
  FrameCallbacks callbacks;
  callbacks.onProgress = [](int done, int) -> bool {
    if (done > 0) throw std::runtime_error("enough");
    return true;
  };
  EXPECT_THROW(renderer_.render(request_, callbacks), std::runtime_error);
  expectRendersAgain();
  callbacks.onPhase = [](Phase phase) {
    if (phase == Phase::building) throw std::logic_error("no");
  };
  EXPECT_THROW(renderer_.render(request_, callbacks), std::logic_error);
  expectRendersAgain();
}

// A host that traps machine faults leaves the render by a jump, and no destructor runs.
TEST_F(Progress, RenderTornDownByAJumpIsEndedByTheNext) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "what the jump leaves behind is a leak by design";
#endif
  static std::jmp_buf back;
  static FrameCallbacks callbacks;
  callbacks.onProgress = [](int done, int) -> bool {
    if (done > 0) std::longjmp(back, 1);
    return true;
  };
  if (setjmp(back) == 0) {
    renderer_.render(request_, callbacks);
    FAIL() << "the render returned";
  }
  expectRendersAgain();
}

TEST_F(Progress, RequestsThatCannotBeCarriedOutAreRefused) {
  FrameRequest small = request_;
  small.outputs[0].width = 127;
  EXPECT_THROW(renderer_.render(small), std::invalid_argument);
  small.region = Region{0, 0, 127, 96};  // holds this much
  EXPECT_TRUE(renderer_.render(small));
  FrameRequest none = request_;
  none.width = 0;
  EXPECT_THROW(renderer_.render(none), std::invalid_argument);
  none = request_;
  none.samples = 0;
  EXPECT_THROW(renderer_.render(none), std::invalid_argument);
}

TEST_F(Progress, RegionsAreClippedToTheImage) {
  request_.region = Region{-50, -50, 500, 500};
  expectRendersAgain();
  picture_.pixels.assign(picture_.pixels.size(), -3);
  request_.region = Region{200, 10, 300, 20};  // outside
  EXPECT_TRUE(renderer_.render(request_));
  EXPECT_THAT(picture_.pixels, ::testing::Each(-3));
}

TEST_F(Progress, StatisticsCountTheVisible) {
  renderer_.render(request_);
  const FrameStatistics s = renderer_.statistics();
  EXPECT_EQ(s.lights, 3);
  EXPECT_EQ(s.objects, 6);
  EXPECT_EQ(s.faces, 2 * 48 * 96 * 2 + 4 * 2);
  EXPECT_GE(s.cameraRays, 128U * 96 * 4);
  EXPECT_GT(s.shadowRays, 0U);
}

}  // namespace
}  // namespace standin::raytracer::testing
