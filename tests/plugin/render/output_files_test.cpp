#include "plugin/render/output_files.h"

#include "frame_fixture.h"
#include "platform/files.h"

namespace corvantis {
namespace {

using support::answering;
using support::narrow;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class OutputFiles : public support::FrameFixture {
 protected:
  std::string createPath(const std::u16string& name) {
    hostsdk::BitmapInfo info;
    info.SetName(name);
    return errorOf([&] { createOutputPath(info, connection); });
  }
};

TEST_F(OutputFiles, CreatesAMissingFolderWithAllAboveIt) {
  EXPECT_EQ(createPath(at("deep/er/a.exr")), "");
  EXPECT_THAT(told(), ElementsAre(R"(Creating output path: OUT\deep\er)"));
  EXPECT_EQ(createPath(at("deep/er/a.exr")), "");
  EXPECT_THAT(told(), testing::SizeIs(1));
}

TEST_F(OutputFiles, LeavesAnEmptyNameAloneAndToleratesOneWithoutAFolder) {
  EXPECT_EQ(createPath(u""), "");
  EXPECT_THAT(told(), IsEmpty());
  EXPECT_EQ(createPath(u"a.exr"), "");
  EXPECT_THAT(told(), ElementsAre("Creating output path: "));
}

TEST_F(OutputFiles, TakesAFileInPlaceOfTheFolderForAMissingOne) {
  out.write("taken", "a file");
  EXPECT_EQ(createPath(at("taken/a.exr")), "");
  EXPECT_THAT(told(), ElementsAre(R"(Creating output path: OUT\taken)"));
  EXPECT_EQ(out.read("taken"), "a file");
}

TEST_F(OutputFiles, FailTheFrameWhenTheFolderCannotBeJudged) {
  files.fail("attributes", "shot", platform::error::kAccessDenied);
  host.core.renderOutput.SetName(at("shot/beauty.exr"));
  EXPECT_THAT(render(7), StartsWith("boost::filesystem::status"));
  EXPECT_EQ(told().back(), "Checking output paths");
}

TEST_F(OutputFiles, FailAtTheWriteWhenTheFolderCannotBeCreated) {
  files.fail("createDirectory", "shot", platform::error::kAccessDenied);
  host.core.renderOutput.SetName(at("shot/beauty.exr"));
  EXPECT_EQ(render(7), "Error in bm->OpenOutput(): error code 3");
  EXPECT_THAT(told(), Contains(R"(Creating output path: OUT\shot)"));
}

TEST_F(OutputFiles, AreNotClosedAfterAFailedWrite) {
  host.calls.on("Write", answering(9));
  EXPECT_EQ(render(7), "Error in bm->Write(): error code 9");
  EXPECT_EQ(host.calls.count("Close"), 0);
}

TEST_F(OutputFiles, ListACompanionEvenFromAnEarlierRun) {
  out.write("A_beauty0007.exr", "left over");
  ASSERT_EQ(render(7), "");
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\beauty0007.exr)", R"(OUT\A_beauty0007.exr)"));
}

TEST_F(OutputFiles, FailTheFrameWhenACompanionCannotBeJudged) {
  files.fail("attributes", "A_beauty0007.exr", platform::error::kAccessDenied);
  EXPECT_THAT(relative({render(7)}),
              ElementsAre(R"(file_exists: Could not get the file attributes of "OUT\A_beauty0007.exr")"));
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\beauty0007.exr)"));
}

class LocalRendering : public OutputFiles {
 protected:
  LocalRendering() {
    out.write("tmp/keep", "");
    out.write("shot/keep", "");
    host.core.renderOutput.SetName(at("shot/beauty.exr"));
    job.settings.localRendering = true;
    job.settings.tempFolder = at("tmp");
  }
};

TEST_F(LocalRendering, WritesAsideAndMoves) {
  ASSERT_EQ(render(7), "");
  EXPECT_THAT(toldFrom("Render done"),
              ElementsAre("Render done", R"(Saved image to OUT\shot\beauty0007.exr)", "Checking render elements"));
  EXPECT_THAT(calls({"OpenOutput"}), ElementsAre(R"(OpenOutput #1 OUT\tmp\beauty0007.exr 8x6 type 7)"));
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\shot\beauty0007.exr)"));
  EXPECT_TRUE(out.exists("shot/beauty0007.exr"));
  EXPECT_FALSE(out.exists("tmp/beauty0007.exr"));
}

TEST_F(LocalRendering, MovesTheCompanionToo) {
  out.write("tmp/A_beauty0007.exr", "companion");
  ASSERT_EQ(render(7), "");
  EXPECT_THAT(told(), Contains(R"(Saved image to OUT\shot\A_beauty0007.exr)"));
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\shot\beauty0007.exr)", R"(OUT\shot\A_beauty0007.exr)"));
  EXPECT_EQ(out.read("shot/A_beauty0007.exr"), "companion");
}

TEST_F(LocalRendering, ListsTheNameAskedForWhenAnAlternativeWasWritten) {
  job.settings.useAltOutput = true;
  files.fail("copyFile", "beauty0007.exr", platform::error::kSharingViolation);
  ASSERT_EQ(render(7), "");
  EXPECT_TRUE(out.exists("shot/beauty0007_alt_0.exr"));
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\shot\beauty0007.exr)"));
}

TEST_F(LocalRendering, KeepsTheLocalFileOfAFailedMove) {
  job.settings.useAltOutput = false;
  files.fail("copyFile", "beauty0007.exr", platform::error::kSharingViolation);
  EXPECT_THAT(relative({render(7)}), ElementsAre(StartsWith(R"(Failed to save OUT\shot\beauty0007.exr: )")));
  EXPECT_TRUE(out.exists("tmp/beauty0007.exr"));
  EXPECT_THAT(savedFiles(), IsEmpty());
}

}  // namespace
}  // namespace corvantis
