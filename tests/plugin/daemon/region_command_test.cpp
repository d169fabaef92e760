// RegionRendering through the socket.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "daemon_fixture.h"

namespace corvantis {
namespace {

class RegionCommand : public DaemonTest {
 protected:
  // On a job that has been started, with an output of 640 x 480.
  bool runRegion(const std::string& parameters, const std::vector<std::string>& replies = {}) {
    startAfresh();
    openJob();
    host.core.renderWidth = 640;
    host.core.renderHeight = 480;
    return runLine("RegionRendering" + parameters, replies);
  }

  using Numbers = std::array<std::int32_t, 10>;
  // Type, edges, overs, padding.
  Numbers region() const {
    const JobSettings& s = job->settings;
    return {s.regionType,     s.regionLeft,    s.regionTop,       s.regionRight,      s.regionBottom,
            s.regionLeftOver, s.regionTopOver, s.regionRightOver, s.regionBottomOver, s.regionPadding};
  }
};

TEST_F(RegionCommand, StoresAndLogsTheRegion) {
  EXPECT_TRUE(runRegion(",10,0,0,100,100,NOCROP"));
  EXPECT_TRUE(job->settings.regionRendering);
  EXPECT_EQ(region(), (Numbers{1, 0, 0, 110, 110, 10, 10, 0, 0, 10}));
  EXPECT_THAT(logOfCommand(), testing::ElementsAre("Left less than 0: -10", "Left: 0, over: 10", "Top less than 0: -10",
                                                   "Top: 0, over: 10", "Right: 110, over: 0", "Bottom: 110, over: 0"));
  EXPECT_EQ(host.core.renderWidth, 640);

  EXPECT_TRUE(runRegion(",5,600,400,640,490,CROP"));
  EXPECT_EQ(region(), (Numbers{4, 595, 395, 640, 480, 0, 0, 5, 15, 5}));
  EXPECT_THAT(logOfCommand(),
              testing::ElementsAre("Left: 595, over: 0", "Top: 395, over: 0", "Right greater than width: 645",
                                   "Right: 640, over: 5", "Bottom greater than height: 495", "Bottom: 480, over: 15"));
}

TEST_F(RegionCommand, BlowupEnlargesTheOutputAndClampsToIt) {
  EXPECT_TRUE(runRegion(",0,100,50,420,290,BLOWUP"));
  EXPECT_EQ(region(), (Numbers{4, 200, 100, 840, 580, 0, 0, 0, 0, 0}));
  EXPECT_EQ(host.core.renderWidth, 1280);
  EXPECT_EQ(host.core.renderHeight, 960);

  EXPECT_TRUE(runRegion(",50,320,240,640,480,BLOWUP"));
  EXPECT_EQ(region(), (Numbers{4, 590, 430, 1280, 960, 0, 0, 50, 50, 50}));

  EXPECT_TRUE(runRegion(",0,0,0,2,9,BLOWUP"));
  EXPECT_EQ(region(), (Numbers{4, 0, 0, 640, 480, 0, 0, 0, 0, 0}));
  EXPECT_EQ(host.core.renderWidth, 204800);
  EXPECT_EQ(host.core.renderHeight, 153600);
}

TEST_F(RegionCommand, RefusesWhatIsNoRegion) {
  const std::pair<std::string, std::string> cases[] = {
      {",1,2,3,4,5", "Expected 6 parameters, got 5"},
      {",1,2,3,4,5,CROP,7", "Expected 6 parameters, got 7"},
      {",x,2,3,4,5,CROP", "Parameter 1, \"x\", is not a valid value for Padding."},
      {",1, 2,3,4,5,CROP", "Parameter 2, \" 2\", is not a valid value for Left."},
      {",1,2,,4,5,CROP", "Parameter 3, \"\", is not a valid value for Top."},
      {",1,2,3,4.0,5,CROP", "Parameter 4, \"4.0\", is not a valid value for Right."},
      {",1,2,3,4,5000000000,CROP", "Parameter 5, \"5000000000\", is not a valid value for Bottom."},
      {",1,2,3,4,5,crop", "Parameter 6, \"crop\", is not CROP, NOCROP, or BLOWUP."},
      {",0,7,0,7,9,BLOWUP", "Left and Right are equal, so BLOWUP has no scale."},
      {",0,2147483647,0,2147483646,9,BLOWUP", "The region with its padding is outside the range of pixel coordinates."},
      {",-2147483648,1,0,7,9,CROP", "The region with its padding is outside the range of pixel coordinates."},
  };
  for (const auto& [parameters, text] : cases) {
    SCOPED_TRACE(parameters);
    EXPECT_TRUE(runRegion(parameters, {"ERROR: RegionRendering: " + text}));
    EXPECT_TRUE(job->settings.regionRendering) << "the flag is set before anything is looked at";
    Numbers expected{};
    expected[9] = job->settings.regionPadding;
    EXPECT_EQ(region(), expected);
    EXPECT_EQ(host.core.renderWidth, 640);
    EXPECT_EQ(host.core.renderHeight, 480);
  }
}

TEST_F(RegionCommand, KeepsThePaddingOfARefusedRegion) {
  runRegion(",12,x,3,4,5,CROP", {"ERROR: RegionRendering: Parameter 2, \"x\", is not a valid value for Left."});
  EXPECT_EQ(job->settings.regionPadding, 12);
}

TEST_F(RegionCommand, NeedsAHostThatAJobHasBeenStartedOn) {
  const std::string refusal =
      "ERROR: RegionRendering: The size of the render output is not known before the first StartJob.";
  for (const std::string mode : {"NOCROP", "CROP", "BLOWUP"}) {
    startAfresh();
    EXPECT_TRUE(runLine("RegionRendering,0,1,2,3,4," + mode, {refusal}));
  }
  startAfresh();
  runLine("RegionRendering,0,1,2,3,4,?",
          {"ERROR: RegionRendering: Parameter 6, \"?\", is not CROP, NOCROP, or BLOWUP."});
}

}  // namespace
}  // namespace corvantis
