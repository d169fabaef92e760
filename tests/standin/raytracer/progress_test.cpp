// What a render tells its caller, and how the caller ends it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tbb/global_control.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>

#include "platform/fault_guard.h"
#include "scenes.h"
#include "standin/raytracer/shared_work.h"
#include "support/faults.h"

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

bool takeFault(void*, const platform::FaultContext&) { return true; }

// Whoever traps a machine fault on the calling thread leaves the render by a jump, and no destructor runs. Of several
// threads whose pieces fault, the calling one may be told of another's first.
TEST_F(Progress, AfterAFaultInAPieceTheNextRenderIsWhole) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "what the jump leaves behind is a leak by design";
#endif
  FrameRequest faulting = request_;
  volatile std::uintptr_t nowhere = 0xABCD000000000000;
  faulting.outputs[0].pixels = reinterpret_cast<float*>(nowhere);
  for (const int threads : {1, 3}) {
    SCOPED_TRACE(threads);
    Renderer renderer(scene_, threads);
    for (int round = 0; round < 2; ++round) {
      std::uint32_t code = 0;
      std::string told;
      auto render = [&] {
        try {
          renderer.render(faulting);
        } catch (const std::runtime_error& error) {
          told = error.what();
        }
      };
      code = platform::runGuarded([](void* work) { (*static_cast<decltype(render)*>(work))(); }, &render, takeFault,
                                  nullptr);
      EXPECT_TRUE(code == platform::fault::kAccessViolation || told.find("machine fault C0000005") != told.npos)
          << told;
      EXPECT_TRUE(threads > 1 || told.empty()) << told;
      picture_.pixels.assign(picture_.pixels.size(), -1);
      ASSERT_TRUE(renderer.render(request_));
      EXPECT_TRUE(picture_.pixels == reference_.pixels);
    }
  }
}

TEST(SharedWork, FaultOnAHelperStopsTheWorkAndIsOneFailureOfTheCaller) {
  const tbb::global_control twoThreads(tbb::global_control::max_allowed_parallelism, 2);
  tbb::task_arena arena(2, 1);
  const auto caller = std::this_thread::get_id();
  std::atomic<int> callers{0}, helpers{0};
  SharedWork work(arena, 1000, [&](int) {
    if (std::this_thread::get_id() != caller) {
      ++helpers;
      support::writeToNull();
    }
    ++callers;
    while (helpers == 0) std::this_thread::yield();
  });
  const auto untilFaulted = [&](int) {
    while (!work.hasFaulted()) std::this_thread::yield();
    return true;
  };
  EXPECT_THAT([&] { work.run(1, untilFaulted); },
              ::testing::ThrowsMessage<std::runtime_error>(::testing::MatchesRegex(
                  "Ray tracer: machine fault C0000005 on a helper thread, at .*raytracer\\+[0-9A-F]+")));
  EXPECT_EQ(helpers, 1);
  EXPECT_LE(callers, 2);
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
