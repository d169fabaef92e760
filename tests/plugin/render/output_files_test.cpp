#include "plugin/render/output_files.h"

#include "platform/files.h"
#include "support/frame_fixture.h"

namespace corvantis {
namespace {

using platform::error::kAccessDenied;
using platform::error::kDiskFull;
using platform::error::kFileNotFound;
using platform::error::kSharingViolation;
using namespace support;
using namespace testing;

class OutputFiles : public FrameFixture {
 protected:
  std::string createPath(const std::u16string& name) {
    hostsdk::BitmapInfo info;
    info.SetName(name);
    return errorOf([&] { createOutputPath(info, connection); });
  }
};

TEST_F(OutputFiles, CreatesAMissingFolderWithAllAboveIt) {
  out.write("taken", "a file");
  for (int again = 0; again < 2; ++again) EXPECT_EQ(createPath(at("deep/er/a.exr")), "");
  EXPECT_EQ(createPath(u""), "");
  EXPECT_EQ(createPath(u"a.exr"), "");
  EXPECT_EQ(createPath(at("taken/a.exr")), "");
  EXPECT_THAT(told(), ElementsAre(R"(Creating output path: OUT\deep\er)",
                                  "Creating output path: ", R"(Creating output path: OUT\taken)"));
  EXPECT_TRUE(out.exists("deep/er"));
  EXPECT_EQ(out.read("taken"), "a file");
}

TEST_F(OutputFiles, FailTheFrameForAFolderThatCannotBeJudgedOrCreated) {
  host.core.renderOutput.SetName(at("shot/beauty.exr"));
  files.fail("attributes", "shot", kAccessDenied, 1);
  EXPECT_THAT(render(7), StartsWith("boost::filesystem::status"));
  EXPECT_EQ(told().back(), "Checking output paths");
  files.fail("createDirectory", "shot", kAccessDenied);
  EXPECT_EQ(render(7), "Error in bm->OpenOutput(): error code 3");
  EXPECT_THAT(told(), Contains(R"(Creating output path: OUT\shot)"));
}

TEST_F(OutputFiles, ListACompanionEvenFromAnEarlierRun) {
  out.write("A_beauty0007.exr", "left over");
  EXPECT_THAT(saved(7), ElementsAre(R"(OUT\beauty0007.exr)", R"(OUT\A_beauty0007.exr)"));
  files.fail("attributes", "A_beauty0007.exr", kAccessDenied);
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

TEST_F(LocalRendering, WritesAsideAndMovesTheCompanionToo) {
  EXPECT_THAT(saved(7), ElementsAre(R"(OUT\shot\beauty0007.exr)"));
  EXPECT_THAT(toldFrom("Render done"),
              ElementsAre("Render done", R"(Saved image to OUT\shot\beauty0007.exr)", "Checking render elements"));
  EXPECT_THAT(calls({"OpenOutput"}), ElementsAre(R"(OpenOutput #1 OUT\tmp\beauty0007.exr 8x6 type 7)"));
  EXPECT_TRUE(out.exists("shot/beauty0007.exr") && !out.exists("tmp/beauty0007.exr"));

  out.write("tmp/A_beauty0007.exr", "companion");
  EXPECT_THAT(saved(7), ElementsAre(R"(OUT\shot\beauty0007.exr)", R"(OUT\shot\A_beauty0007.exr)"));
  EXPECT_THAT(told(), Contains(R"(Saved image to OUT\shot\A_beauty0007.exr)"));
  EXPECT_EQ(out.read("shot/A_beauty0007.exr"), "companion");
}

TEST_F(LocalRendering, ListsTheNameAskedForAndKeepsTheLocalFileOfAFailedMove) {
  files.fail("copyFile", "beauty0007.exr", kSharingViolation);
  job.settings.useAltOutput = false;
  EXPECT_THAT(relative({render(7)}), ElementsAre(StartsWith(R"(Failed to save OUT\shot\beauty0007.exr: )")));
  EXPECT_TRUE(out.exists("tmp/beauty0007.exr"));
  EXPECT_THAT(savedFiles(), IsEmpty());
  job.settings.useAltOutput = true;
  ASSERT_EQ(render(7), "");
  EXPECT_TRUE(out.exists("shot/beauty0007_alt_0.exr"));
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\shot\beauty0007.exr)"));
}

class MoveWithRetries : public FrameFixture {
 protected:
  MoveWithRetries() {
    out.write("tmp/a.exr", "image");
    out.write("shot/other.exr", "other");
  }
  std::string move(const std::u16string& destination) {
    const std::string error = errorOf([&] { moveWithRetries(job.settings, at("tmp/a.exr"), destination, connection); });
    return relative({error}).front();
  }
  std::string move() { return move(at("shot/a0005.exr")); }
  static std::string givenUp(std::uint32_t errorNumber) {
    return R"(Failed to save OUT\shot\a0005.exr: )" + narrow(platform::systemErrorText(errorNumber));
  }
};

TEST_F(MoveWithRetries, TriesWaitsAndTellsTheWorker) {
  constexpr int kForGood = 1000;
  const struct {
    bool useAltOutput;
    std::uint32_t errorNumber;
    const char* ending;  // of the destinations that the error strikes
    int times, failedAttempts;
    const char* savedAs;  // null: given up
  } cases[] = {
      {true, kSharingViolation, "a0005.exr", 0, 0, "a0005.exr"},
      {true, kSharingViolation, "a0005.exr", 2, 2, "a0005.exr"},
      {false, kSharingViolation, "a0005.exr", 4, 4, "a0005.exr"},
      {false, kSharingViolation, "a0005.exr", kForGood, 5, nullptr},
      {true, kSharingViolation, "a0005.exr", kForGood, 5, "a0005_alt_0.exr"},
      {true, kSharingViolation, ".exr", 9, 9, "a0005_alt_4.exr"},
      {true, kSharingViolation, ".exr", kForGood, 10, nullptr},
      {true, kDiskFull, ".exr", 1, 1, "a0005.exr"},
      {false, kAccessDenied, ".exr", kForGood, 5, nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(Message() << c.failedAttempts << " failed attempts, error " << c.errorNumber);
    out.write("tmp/a.exr", "image");
    job.settings.useAltOutput = c.useAltOutput;
    FakeFiles failing;
    const platform::FilesReplacement inForce{failing};
    if (c.times != 0) failing.fail("copyFile", c.ending, c.errorNumber, c.times);
    const std::size_t sleepsBefore = clock.sleeps().size();
    log.startAgain();

    EXPECT_EQ(move(), c.savedAs ? "" : givenUp(c.errorNumber));
    std::vector<std::string> lines, deletions = {R"(deleteFile OUT\shot\a0005.exr)"};
    std::vector<std::uint32_t> sleeps;
    for (int attempt = 1; attempt <= c.failedAttempts; ++attempt) {
      lines.push_back(R"(Attempt to move OUT\tmp\a.exr to destination failed: )" +
                      narrow(platform::systemErrorText(c.errorNumber)));
      lines.push_back("Waiting " + std::to_string(attempt) + " seconds to try again.");
      sleeps.push_back(static_cast<std::uint32_t>(attempt) * 1000);
      const std::string alternative = attempt > 5 ? "_alt_" + std::to_string(attempt - 6) : "";
      deletions.push_back(R"(deleteFile OUT\shot\a0005)" + alternative + ".exr");
    }
    if (c.savedAs) {
      lines.push_back(std::string(R"(Saved image to OUT\shot\)") + c.savedAs);
      deletions.emplace_back(R"(deleteFile OUT\tmp\a.exr)");
      EXPECT_EQ(out.read(std::string("shot/") + c.savedAs), "image");
    }
    EXPECT_EQ(told(), lines);
    const std::vector<std::uint32_t> all = clock.sleeps();
    EXPECT_EQ(std::vector<std::uint32_t>(all.begin() + static_cast<std::ptrdiff_t>(sleepsBefore), all.end()), sleeps);
    EXPECT_EQ(relative(failing.log.linesOf({"deleteFile"})), deletions);
    EXPECT_EQ(out.exists("tmp/a.exr"), c.savedAs == nullptr);
  }
}

TEST_F(MoveWithRetries, ReplacesAnOlderFileButNoFolder) {
  job.settings.useAltOutput = true;
  out.write("shot/a0005.exr", "much older and longer");
  EXPECT_EQ(move(), "");
  EXPECT_EQ(out.read("shot/a0005.exr"), "image");
  EXPECT_THAT(move(), givenUp(kFileNotFound));  // the source is gone

  out.write("tmp/a.exr", "image");
  out.write("folder.exr/inside.txt", "kept");
  EXPECT_EQ(move(at("folder.exr")), "");
  EXPECT_EQ(told().back(), R"(Saved image to OUT\folder_alt_0.exr)");
  EXPECT_TRUE(out.exists("folder.exr/inside.txt"));
}

TEST_F(MoveWithRetries, KeepsAFileThatIsToBeMovedOntoItself) {
  EXPECT_EQ(move(at("tmp") + u"/\\a.exr"), "");
  EXPECT_EQ(out.read("tmp/a.exr"), "image");
  EXPECT_EQ(told().back(), R"(Saved image to OUT\tmp/\a.exr)");
  EXPECT_EQ(move(at("shot/../tmp/./a.exr")), "");
  EXPECT_EQ(out.read("tmp/a.exr"), "image");
  EXPECT_EQ(told().back(), R"(Saved image to OUT\shot\..\tmp\.\a.exr)");
}

class JpegPreview : public FrameFixture {
 protected:
  JpegPreview() {
    job.settings.useJpegOutput = true;
    job.settings.jpegOutputPath = at("previews");
  }
};

TEST_F(JpegPreview, StandsBesideEverySavedImage) {
  useRegion(4, {0, 0, 4, 4});
  job.settings.regionRendering = false;
  host.core.renderer.requirements = {3};
  ASSERT_EQ(render(5), "");
  EXPECT_THAT(told(), Contains(R"(Creating jpeg output path: OUT\previews)"));
  EXPECT_THAT(toldFrom(R"(Writing to output file: OUT\beauty0005.exr)"),
              ElementsAre(R"(Writing to output file: OUT\beauty0005.exr)",
                          R"(Writing jpeg output to: OUT\previews\beauty0005.jpg)", "Checking render elements"));
  EXPECT_THAT(calls({"OpenOutput"}), Contains(R"(OpenOutput #1 OUT\previews\beauty0005.jpg 8x6 type 17)"));
  EXPECT_TRUE(out.exists("previews/beauty0005.jpg"));
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\beauty0005.exr)"));

  log.startAgain();
  job.settings.jpegOutputPath = at("previews/");
  ASSERT_EQ(render(6), "");
  EXPECT_TRUE(out.exists("previews/beauty0006.jpg"));
  EXPECT_THAT(told(), Not(Contains(StartsWith("Creating jpeg"))));

  job.settings.regionRendering = true;  // of which there is none
  ASSERT_EQ(render(7), "");
  EXPECT_FALSE(out.exists("previews/beauty0007.jpg"));
}

TEST_F(JpegPreview, IsSwitchedOffForTheJobWithoutAFolderThatCanBeJudged) {
  files.fail("attributes", "previews", kAccessDenied);
  for (const char* line : {"Could not create jpeg output path, disabling jpeg output",
                           "No jpeg output path specified, disabling jpeg output"}) {
    job.settings.useJpegOutput = true;
    ASSERT_EQ(render(5), "");
    EXPECT_THAT(toldFrom("Checking output paths"), Contains(line));
    EXPECT_FALSE(job.settings.useJpegOutput);
    EXPECT_FALSE(out.exists("previews/beauty0005.jpg"));
    log.startAgain();
    ASSERT_EQ(render(6), "");
    EXPECT_THAT(told(), Not(Contains(HasSubstr("jpeg"))));
    job.settings.jpegOutputPath.clear();
  }
}

TEST_F(JpegPreview, FailingLeavesTheFrameSaved) {
  files.fail("createDirectory", "previews", kAccessDenied);
  addElement(u"Z", at("z.exr"));
  EXPECT_THAT(saved(5), ElementsAre(R"(OUT\beauty0005.exr)", R"(OUT\z0005.exr)"));
  EXPECT_TRUE(job.settings.useJpegOutput);
  EXPECT_THAT(told(), Contains("Failed to save jpeg output because: Error in bm->OpenOutput(): error code 3"));
  host.calls.clear();
  out.write("previews/keep", "");
  host.calls.on("Write", onCall(2, answering(7)));
  EXPECT_THAT(saved(6), ElementsAre(R"(OUT\beauty0006.exr)", R"(OUT\z0006.exr)"));
  EXPECT_THAT(told(), Contains("Failed to save jpeg output because: Error in bm->Write(): error code 7"));
}

TEST_F(JpegPreview, IsWrittenAsideAndMovedWithLocalRendering) {
  out.write("tmp/keep", "");
  job.settings.localRendering = true;
  job.settings.tempFolder = at("tmp/");
  files.fail("copyFile", "beauty0005.jpg", kSharingViolation, 1);
  ASSERT_EQ(render(5), "");
  EXPECT_THAT(told(), Contains(R"(Writing jpeg output to: OUT\tmp\beauty0005.jpg)"));
  EXPECT_THAT(told(), Contains(StartsWith(R"(Attempt to move OUT\tmp\beauty0005.jpg to destination failed: )")));
  EXPECT_TRUE(out.exists("previews/beauty0005.jpg"));
  EXPECT_FALSE(out.exists("tmp/beauty0005.jpg"));
}

}  // namespace
}  // namespace corvantis
