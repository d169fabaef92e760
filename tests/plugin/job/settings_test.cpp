#include "plugin/job/settings.h"

#include <gtest/gtest.h>

namespace corvantis {
namespace {

// One of each kind: by what it is at load, and by whether the start of a job resets or keeps it.
TEST(JobSettings, HoldTheirValuesAtLoadAndTheStartOfAJobResetsThoseOfOneJob) {
  JobSettings s;
  EXPECT_FALSE(s.showFrameBuffer);
  EXPECT_FALSE(s.useAltOutput);
  EXPECT_EQ(s.blackPixelThreshold, 0.0F);
  EXPECT_EQ(s.gammaOut, 1.0F);
  EXPECT_TRUE(s.saveRenderElements);
  EXPECT_FALSE(s.removePadding);

  s.removePadding = s.gammaCorrection = s.useOutputImageFilename = true;
  s.saveRenderElements = false;
  s.frameNumberBase = s.regionBottomOver = 17;
  s.jpegOutputPath = s.outputImageFilename = u"x";
  s.gammaOut = 2.2F;
  resetJobSettings(s);
  EXPECT_FALSE(s.removePadding || s.useOutputImageFilename);
  EXPECT_EQ(s.frameNumberBase + s.regionBottomOver, 0);
  EXPECT_EQ(s.jpegOutputPath, u"");
  EXPECT_TRUE(s.showFrameBuffer && s.useAltOutput);
  EXPECT_EQ(s.blackPixelThreshold, 0.1F);
  EXPECT_EQ(s.outputImageFilename, u"x") << "kept, though it is not in use";
  EXPECT_TRUE(s.gammaCorrection);
  EXPECT_EQ(s.gammaOut, 2.2F);
  EXPECT_FALSE(s.saveRenderElements);
}

}  // namespace
}  // namespace corvantis
