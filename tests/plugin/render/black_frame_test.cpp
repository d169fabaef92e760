#include "plugin/render/black_frame.h"

#include <cmath>
#include <functional>
#include <limits>
#include <utility>

#include "support/fake_bitmap.h"
#include "support/job_fixture.h"

namespace corvantis {
namespace {

using hostsdk::ColorFloat;
using namespace support;
using namespace testing;

constexpr ColorFloat kBlack{0, 0, 0, 1};
constexpr ColorFloat kWhite{1, 1, 1, 1};
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

// A bitmap whose pixels are computed when they are read.
class ComputedBitmap : public FakeBitmap, public hostsdk::BitmapStorage {
 public:
  using Color = std::function<ColorFloat(int x, int y)>;
  ComputedBitmap(FakeBitmapManager& manager, int width, int height, Color color)
      : FakeBitmap(manager, 1, {}), width_(width), height_(height), color_(std::move(color)) {}

  int Width() const override { return width_; }
  int Height() const override { return height_; }
  hostsdk::BitmapStorage* Storage() override { return hasStorage ? this : nullptr; }
  int GetLinearPixels(int x, int y, int count, ColorFloat* out) override {
    EXPECT_EQ(count, 1);
    if (readable) *out = color_(x, y);
    return 0;  // is not examined
  }
  int PutLinearPixels(int, int, int, const ColorFloat*) override { return 0; }
  int CopyImage(hostsdk::Bitmap*, int, hostsdk::Color64, const hostsdk::BitmapInfo&) override { return 0; }

  bool hasStorage = true, readable = true;

 private:
  int width_, height_;
  Color color_;
};

class BlackFrame : public JobFixture {
 protected:
  std::string check(ComputedBitmap& bitmap) {
    return errorOf([&] { checkBlackFrame(job, bitmap, connection); });
  }
  // Whether one pixel counts as black at a threshold.
  bool black(ColorFloat pixel, float threshold) {
    job.settings.blackPixelThreshold = threshold;
    job.settings.blackPixelPercentage = 100;
    ComputedBitmap bitmap(host.bitmaps, 1, 1, [=](int, int) { return pixel; });
    return !check(bitmap).empty();
  }
};

TEST_F(BlackFrame, JudgesEachChannelAgainstTheThreshold) {
  const struct {
    float threshold;
    ColorFloat pixel;
    bool black;
  } cases[] = {
      {0.1F, {0.05F, 0.05F, 0.05F, 1.0F}, true},  {0.1F, {0.05F, 0.05F, 0.05F, 0.0F}, true},
      {0.1F, {0.05F, 0.05F, 0.05F, 0.5F}, false}, {0.1F, {0.05F, 0.2F, 0.05F, 1.0F}, false},
      {0.1F, {0.2F, 0.05F, 0.05F, 1.0F}, false},  {0.1F, {0.05F, 0.05F, 0.2F, 1.0F}, false},
      {0.1F, {0.1F, 0.1F, 0.1F, 0.1F}, true},   // at the threshold
      {0.1F, {0.1F, 0.1F, 0.1F, 0.95F}, true},  // within it of opaque
      {0.1F, {0.1F, 0.1F, 0.1F, 0.85F}, false},   {0.1F, {-1.0F, -1.0F, -1.0F, 2.0F}, true},
      {0.0F, {0.0F, 0.0F, 0.0F, 0.0F}, true},     {0.0F, {-0.5F, 0.0F, 0.0F, 1.0F}, true},
      {0.0F, {0.0F, 0.0F, 0.0F, 1.5F}, true},     {0.0F, {0.001F, 0.0F, 0.0F, 1.0F}, false},
      {0.0F, {0.0F, 0.0F, 0.0F, 0.999F}, false},  {0.5F, {0.0F, 0.0F, 0.0F, 0.4999F}, true},  // alpha never excludes
      {0.5F, {0.0F, 0.0F, 0.0F, 0.5F}, true},     {0.5F, {0.0F, 0.0F, 0.0F, 0.5001F}, true},
      {1.0F, {1.0F, 1.0F, 1.0F, 0.5F}, true},     {0.1F, {kNaN, 0.0F, 0.0F, 1.0F}, false},
      {0.1F, {0.0F, kNaN, 0.0F, 1.0F}, false},    {0.1F, {0.0F, 0.0F, kNaN, 1.0F}, false},
      {0.1F, {0.0F, 0.0F, 0.0F, kNaN}, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(black(c.pixel, c.threshold), c.black)
        << c.pixel.r << " " << c.pixel.g << " " << c.pixel.b << " " << c.pixel.a << " at " << c.threshold;
  }
}

TEST_F(BlackFrame, ReportsAPassInThreeLinesAndAFailureInFour) {
  const struct {
    int black, percent, minimum;  // pixels of 1000
    const char* error;
  } cases[] = {{199, 19, 20, ""},
               {499, 49, 50, ""},
               {500, 50, 50, "50% of the output image is black, which equals or exceeds the minimum of 50%"},
               {0, 0, 0, "0% of the output image is black, which equals or exceeds the minimum of 0%"}};
  job.settings.blackPixelThreshold = 0.25F;
  for (const auto& c : cases) {
    job.settings.blackPixelPercentage = c.minimum;
    ComputedBitmap bitmap(host.bitmaps, 40, 25, [&](int x, int y) { return y * 40 + x < c.black ? kBlack : kWhite; });
    log.startAgain();
    EXPECT_EQ(check(bitmap), c.error);
    const std::string percent = std::to_string(c.percent) + "%";
    std::vector<std::string> lines = {
        "  blackPixelPercentage = " + std::to_string(c.minimum) + "%", "  blackPixelThreshold = 0.25",
        std::to_string(c.black) + " of 1000 pixels are considered black (" + percent + ")"};
    if (*c.error) lines.push_back(percent + " of the output image is considered black, failing render...");
    EXPECT_EQ(log.unsentLines(), lines);
  }
}

TEST_F(BlackFrame, CountsALargeImageWithoutOverflow) {  // 48 000 000 x 100 is beyond 32 bits
  job.settings.blackPixelPercentage = 100;
  ComputedBitmap bitmap(host.bitmaps, 8000, 6000, [](int, int) { return kBlack; });
  EXPECT_EQ(check(bitmap), "100% of the output image is black, which equals or exceeds the minimum of 100%");
  EXPECT_EQ(log.unsentLines()[2], "48000000 of 48000000 pixels are considered black (100%)");
}

TEST_F(BlackFrame, ReadsPixelByPixelColumnByColumn) {
  std::string reads;
  ComputedBitmap bitmap(host.bitmaps, 2, 3, [&](int x, int y) {
    reads += std::to_string(x) + "," + std::to_string(y) + " ";
    return kWhite;
  });
  job.settings.blackPixelPercentage = 100;
  EXPECT_EQ(check(bitmap), "");
  EXPECT_EQ(reads, "0,0 0,1 0,2 1,0 1,1 1,2 ");
  bitmap.readable = false;  // such a pixel counts as transparent black
  EXPECT_NE(check(bitmap), "");
}

TEST_F(BlackFrame, HasNothingToJudgeWithoutPixels) {
  const auto white = [](int, int) { return kWhite; };
  ComputedBitmap empty(host.bitmaps, 0, 5, white);
  ComputedBitmap flat(host.bitmaps, 5, 0, white);
  ComputedBitmap bare(host.bitmaps, 5, 5, white);
  bare.hasStorage = false;
  for (ComputedBitmap* bitmap : {&empty, &flat, &bare}) {
    job.settings.blackPixelPercentage = 1;
    log.startAgain();
    EXPECT_EQ(check(*bitmap), "");
    EXPECT_EQ(log.unsentLines().back(), "0 of 0 pixels are considered black (0%)");
    job.settings.blackPixelPercentage = 0;
    EXPECT_EQ(check(*bitmap), "0% of the output image is black, which equals or exceeds the minimum of 0%");
  }
}

}  // namespace
}  // namespace corvantis
