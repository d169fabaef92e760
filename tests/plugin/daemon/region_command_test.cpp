// RegionRendering through the socket.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "support/daemon_fixture.h"

namespace corvantis {
namespace {

constexpr std::int32_t kMax = 2147483647;

struct OutputSize {
  std::int32_t width = 640, height = 480;
};

class RegionCommand : public DaemonTest {
 protected:
  // On a job that has been started.
  bool runRegion(const std::string& parameters, OutputSize output, const std::vector<std::string>& replies) {
    startAfresh();
    openJob();
    host.core.renderWidth = output.width;
    host.core.renderHeight = output.height;
    return runLine("RegionRendering," + parameters, replies);
  }

  using Edges = std::array<std::int32_t, 4>;
  Edges cut() const {
    const JobSettings& s = job->settings;
    return {s.regionLeft, s.regionTop, s.regionRight, s.regionBottom};
  }
  Edges overs() const {
    const JobSettings& s = job->settings;
    return {s.regionLeftOver, s.regionTopOver, s.regionRightOver, s.regionBottomOver};
  }
};

TEST_F(RegionCommand, PadsBlowsUpAndCutsTheRegion) {
  const struct {
    std::string parameters;
    std::int32_t type;
    Edges cut, over;
    OutputSize output;  // of the host, afterwards
  } cases[] = {
      {"10,0,0,100,100,NOCROP", 1, {0, 0, 110, 110}, {10, 10, 0, 0}, {}},
      {"5,600,400,640,490,CROP", 4, {595, 395, 640, 480}, {0, 0, 5, 15}, {}},
      {"0,0,0,640,480,CROP", 4, {0, 0, 640, 480}, {}, {}},
      {"10,5,5,635,475,CROP", 4, {0, 0, 640, 480}, {5, 5, 5, 5}, {}},
      {"-5,20,30,40,50,CROP", 4, {25, 35, 35, 45}, {}, {}},
      {"0,-2147483647,0,2147483647,2147483647,CROP", 4, {0, 0, 640, 480}, {kMax, 0, kMax - 640, kMax - 480}, {}},
      // Edges on the far side of the output are left alone.
      {"0,700,500,-3,-4,CROP", 4, {700, 500, -3, -4}, {}, {}},

      {"0,100,50,420,290,BLOWUP", 4, {200, 100, 840, 580}, {}, {1280, 960}},
      {"50,320,240,640,480,BLOWUP", 4, {590, 430, 1280, 960}, {0, 0, 50, 50}, {1280, 960}},
      {"0,0,0,640,480,BLOWUP", 4, {0, 0, 640, 480}, {}, {}},
      // Twice as wide as the output: half the size.
      {"0,0,0,1280,10,BLOWUP", 4, {0, 0, 320, 240}, {0, 0, 320, 240}, {320, 240}},
      // 640 / 300: products are cut toward zero, also the negative ones.
      {"0,-1,-1,299,7,BLOWUP", 4, {0, 0, 638, 478}, {2, 2, 0, 0}, {1365, 1024}},
      // A sliver of the picture: more than any bitmap holds, though the window is as small as ever.
      {"0,0,0,2,9,BLOWUP", 4, {0, 0, 640, 480}, {}, {204800, 153600}},
      {"0,639,479,640,480,BLOWUP", 4, {408960, 306560, 409600, 307040}, {}, {409600, 307200}},
      // Less than a pixel.
      {"0,0,0,1000000,10,BLOWUP", 4, {}, {0, 0, 640, 480}, {0, 0}},
      {"0,-2147483648,0,2147483647,10,BLOWUP", 4, {}, {320, 0, 320, 480}, {0, 0}},
      // The vertical edges take no part in the scale.
      {"0,10,7,650,7,BLOWUP", 4, {10, 7, 640, 480}, {0, 0, 10, 7}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.parameters);
    EXPECT_TRUE(runRegion(c.parameters, {}, {}));
    EXPECT_TRUE(job->settings.regionRendering);
    EXPECT_EQ(job->settings.regionType, c.type);
    EXPECT_EQ(std::to_string(job->settings.regionPadding), c.parameters.substr(0, c.parameters.find(',')));
    EXPECT_EQ(cut(), c.cut);
    EXPECT_EQ(overs(), c.over);
    EXPECT_EQ(host.core.renderWidth, c.output.width);
    EXPECT_EQ(host.core.renderHeight, c.output.height);
  }
}

// It is cut at the size that the host has, whatever was asked for.
TEST_F(RegionCommand, IsCutAtTheSizeThatTheHostTakes) {
  host.calls.on("SetRenderWidth", support::answering(800));
  host.calls.on("SetRenderHeight", support::answering(500));
  EXPECT_TRUE(runRegion("5,100,50,420,290,BLOWUP", {}, {}));
  EXPECT_THAT(host.calls.linesOf({"SetRenderWidth", "SetRenderHeight"}),
              testing::ElementsAre("SetRenderWidth 1280", "SetRenderHeight 960"));
  EXPECT_EQ(cut(), (Edges{195, 95, 800, 500}));
  EXPECT_EQ(overs(), (Edges{0, 0, 45, 85}));
}

TEST_F(RegionCommand, LogsEveryEdgeAndWhatWasCut) {
  EXPECT_TRUE(runRegion("10,0,0,650,400,NOCROP", {}, {}));
  EXPECT_THAT(logOfCommand(), testing::ElementsAre("Left less than 0: -10", "Left: 0, over: 10", "Top less than 0: -10",
                                                   "Top: 0, over: 10", "Right greater than width: 660",
                                                   "Right: 640, over: 20", "Bottom: 410, over: 0"));
  EXPECT_TRUE(runRegion("0,0,0,1,500,CROP", {}, {}));
  EXPECT_THAT(logOfCommand(), testing::ElementsAre("Left: 0, over: 0", "Top: 0, over: 0", "Right: 1, over: 0",
                                                   "Bottom greater than height: 500", "Bottom: 480, over: 20"));
}

TEST_F(RegionCommand, RefusesWhatIsNoRegion) {
  const std::string outside = "The region with its padding is outside the range of pixel coordinates.";
  const std::string tooLarge = "BLOWUP would need an output outside the range of pixel coordinates.";
  const struct {
    std::string parameters, text;
    OutputSize output;
  } cases[] = {
      {"1,2,3,4,5", "Expected 6 parameters, got 5", {}},
      {"1,2,3,4,5,CROP,7", "Expected 6 parameters, got 7", {}},
      {"x,2,3,4,5,CROP", "Parameter 1, \"x\", is not a valid value for Padding.", {}},
      {"1, 2,3,4,5,CROP", "Parameter 2, \" 2\", is not a valid value for Left.", {}},
      {"1,2,,4,5,CROP", "Parameter 3, \"\", is not a valid value for Top.", {}},
      {"1,2,3,4.0,5,CROP", "Parameter 4, \"4.0\", is not a valid value for Right.", {}},
      {"1,2,3,4,5000000000,CROP", "Parameter 5, \"5000000000\", is not a valid value for Bottom.", {}},
      {"1,2,3,4,5,crop", "Parameter 6, \"crop\", is not CROP, NOCROP, or BLOWUP.", {}},
      {"0,7,0,7,9,BLOWUP", "Left and Right are equal, so BLOWUP has no scale.", {}},
      {"0,100,0,50,10,BLOWUP", "Right is less than Left, so BLOWUP would need an output of negative size.", {}},
      {"0,0,0,1,10,BLOWUP", tooLarge, {65536, 480}},  // 4294967296 pixels wide
      {"0,0,0,1,10,BLOWUP", tooLarge, {40000, 65536}},
      {"0,2147483327,0,2147483647,10,BLOWUP", outside, {}},
      {"0,0,-2147483648,320,10,BLOWUP", outside, {}},
      {"0,-2147483648,0,-2147483647,9,BLOWUP", outside, {}},
      {"1,-2147483648,0,0,0,CROP", outside, {}},
      {"1,0,-2147483648,0,0,CROP", outside, {}},
      {"1,0,0,2147483647,0,CROP", outside, {}},
      {"-1,0,0,0,-2147483648,CROP", outside, {}},
      // What is cut off leaves the range.
      {"0,-2147483648,0,0,0,CROP", outside, {}},
      {"0,0,0,2147483647,0,CROP", outside, {-2, 480}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.parameters);
    EXPECT_TRUE(runRegion(c.parameters, c.output, {"ERROR: RegionRendering: " + c.text}));
    EXPECT_TRUE(job->settings.regionRendering) << "the flag is set before anything is looked at";
    EXPECT_EQ(job->settings.regionType, 0);
    EXPECT_EQ(cut(), Edges());
    EXPECT_EQ(host.core.renderWidth, c.output.width);
  }
}

TEST_F(RegionCommand, KeepsThePaddingOfARefusedRegion) {
  runRegion("12,x,3,4,5,CROP", {}, {"ERROR: RegionRendering: Parameter 2, \"x\", is not a valid value for Left."});
  EXPECT_EQ(job->settings.regionPadding, 12);
}

TEST_F(RegionCommand, NeedsAHostThatAJobHasBeenStartedOn) {
  const std::string refusal =
      "ERROR: RegionRendering: The size of the render output is not known before the first StartJob.";
  runLines(
      {{"RegionRendering,0,1,2,3,4,NOCROP", refusal},
       {"RegionRendering,0,1,2,3,4,BLOWUP", refusal},
       {"RegionRendering,0,1,2,3,4,?", "ERROR: RegionRendering: Parameter 6, \"?\", is not CROP, NOCROP, or BLOWUP."}});
}

}  // namespace
}  // namespace corvantis
