#include "frame_fixture.h"
#include "platform/files.h"

namespace corvantis {
namespace {

using support::answering;
using support::onCall;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class JpegPreview : public support::FrameFixture {
 protected:
  JpegPreview() {
    job.settings.useJpegOutput = true;
    job.settings.jpegOutputPath = at("previews");
  }
  std::vector<std::string> toldOfSaving() const { return toldFrom(R"(Writing to output file: OUT\beauty0005.exr)"); }
};

TEST_F(JpegPreview, StandsBesideEverySavedImage) {
  ASSERT_EQ(render(5), "");
  EXPECT_THAT(told(), Contains(R"(Creating jpeg output path: OUT\previews)"));
  EXPECT_THAT(toldOfSaving(),
              ElementsAre(R"(Writing to output file: OUT\beauty0005.exr)",
                          R"(Writing jpeg output to: OUT\previews\beauty0005.jpg)", "Checking render elements"));
  EXPECT_TRUE(out.exists("previews/beauty0005.jpg"));
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\beauty0005.exr)"));

  log.startAgain();
  job.settings.jpegOutputPath = at("previews/");
  ASSERT_EQ(render(6), "");
  EXPECT_TRUE(out.exists("previews/beauty0006.jpg"));
  EXPECT_THAT(told(), Not(Contains(StartsWith("Creating jpeg"))));
}

TEST_F(JpegPreview, IsSwitchedOffForTheJobByAnEmptyPath) {
  job.settings.jpegOutputPath.clear();
  ASSERT_EQ(render(5), "");
  EXPECT_THAT(toldFrom("Checking output paths"), Contains("No jpeg output path specified, disabling jpeg output"));
  EXPECT_FALSE(job.settings.useJpegOutput);
  log.startAgain();
  ASSERT_EQ(render(6), "");
  EXPECT_THAT(told(), Not(Contains(HasSubstr("jpeg"))));
}

TEST_F(JpegPreview, IsSwitchedOffForTheJobByAFolderThatCannotBeJudged) {
  files.fail("attributes", "previews", platform::error::kAccessDenied);
  ASSERT_EQ(render(5), "");
  EXPECT_THAT(told(), Contains("Could not create jpeg output path, disabling jpeg output"));
  EXPECT_FALSE(job.settings.useJpegOutput);
  EXPECT_FALSE(out.exists("previews/beauty0005.jpg"));
}

TEST_F(JpegPreview, FailingLeavesTheFrameSaved) {
  files.fail("createDirectory", "previews", platform::error::kAccessDenied);
  addElement(u"Z", at("z.exr"));
  ASSERT_EQ(render(5), "");
  EXPECT_TRUE(job.settings.useJpegOutput);
  EXPECT_THAT(toldOfSaving(), ElementsAre(R"(Writing to output file: OUT\beauty0005.exr)",
                                          R"(Writing jpeg output to: OUT\previews\beauty0005.jpg)",
                                          "Failed to save jpeg output because: Error in bm->OpenOutput(): error code 3",
                                          "Checking render elements", R"(Writing to output file: OUT\z0005.exr)"));
}

TEST_F(JpegPreview, FailingInTheWriteLeavesTheFrameSaved) {
  host.calls.on("Write", onCall(2, answering(7)));
  ASSERT_EQ(render(5), "");
  EXPECT_THAT(told(), Contains("Failed to save jpeg output because: Error in bm->Write(): error code 7"));
}

TEST_F(JpegPreview, IsWrittenAsideAndMovedWithLocalRendering) {
  out.write("tmp/keep", "");
  job.settings.localRendering = true;
  job.settings.tempFolder = at("tmp/");
  job.settings.useAltOutput = true;
  files.fail("copyFile", "beauty0005.jpg", platform::error::kSharingViolation, 1);
  ASSERT_EQ(render(5), "");
  EXPECT_THAT(toldFrom(R"(Saved image to OUT\beauty0005.exr)"),
              ElementsAre(R"(Saved image to OUT\beauty0005.exr)", R"(Writing jpeg output to: OUT\tmp\beauty0005.jpg)",
                          StartsWith(R"(Attempt to move OUT\tmp\beauty0005.jpg to destination failed: )"),
                          "Waiting 1 seconds to try again.", R"(Saved image to OUT\previews\beauty0005.jpg)",
                          "Checking render elements"));
  EXPECT_TRUE(out.exists("previews/beauty0005.jpg"));
  EXPECT_FALSE(out.exists("tmp/beauty0005.jpg"));
}

TEST_F(JpegPreview, DescribesItselfByTheScenesSettings) {
  useRegion(4, {0, 0, 4, 4});
  job.settings.regionRendering = false;
  host.core.renderer.requirements = {3};
  ASSERT_EQ(render(5), "");
  EXPECT_THAT(calls({"OpenOutput"}), Contains(R"(OpenOutput #1 OUT\previews\beauty0005.jpg 8x6 type 17)"));
}

TEST_F(JpegPreview, IsNotMadeOfARegion) {
  useRegion(4, {0, 0, 4, 4});
  ASSERT_EQ(render(5), "");
  EXPECT_THAT(told(), Not(Contains(StartsWith("Writing jpeg"))));
  EXPECT_FALSE(out.exists("previews/beauty0005.jpg"));
}

}  // namespace
}  // namespace corvantis
