#include "plugin/render/render_frame.h"

#include <algorithm>

#include "frame_fixture.h"
#include "plugin/job/end_job.h"

namespace corvantis {
namespace {

using support::answering;
using support::narrow;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class RenderFrameTest : public support::FrameFixture {};

TEST_F(RenderFrameTest, TellsEveryStageOfAJobsFirstFrame) {
  job.settings.frameNumberBase = 100;
  ASSERT_EQ(render(7), "");
  EXPECT_THAT(told(),
              ElementsAre("Render frame 7", R"(Rendering frame "OUT\beauty0107.exr")", "Rendering 0 render elements",
                          "Setting up render parameters", "Rendering viewport", "Opening renderer",
                          "Multipass disabled", "Rendering 1 passes", "Checking output paths",
                          "Checking default actions", "Calling renderer", "CallCurRendererRenderFrame returned code 1",
                          "Render done", R"(Writing to output file: OUT\beauty0107.exr)", "Checking render elements"));
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\beauty0107.exr)"));
  EXPECT_TRUE(out.exists("beauty0107.exr"));
}

TEST_F(RenderFrameTest, AsksTheHostInTheRightOrder) {
  job.settings.overrideSaveFile = true;
  job.settings.overrideSaveFileValue = true;
  host.core.renderer.requirements = {3};
  ASSERT_EQ(render(7), "");
  EXPECT_THAT(
      calls({"SetTime", "SetRenderSaveFile", "Create", "PrepareGChannels", "OpenCurRenderer", "Display",
             "CurRendererRenderFrame", "OpenOutput", "Write", "Close", "DeleteThis", "CloseCurRenderer"}),
      ElementsAre("SetTime 1120 redraw", "SetRenderSaveFile 1", R"(Create OUT\beauty0007.exr 8x6 type 17)",
                  "PrepareGChannels #1", "OpenCurRenderer none view 0 8x6",
                  "CurRendererRenderFrame 1120 #1 duration 1 none none",
                  R"(OpenOutput #1 OUT\beauty0007.exr 8x6 type 17)", R"(Write #1 OUT\beauty0007.exr frame -2000000)",
                  R"(Close #1 OUT\beauty0007.exr 0)", "DeleteThis #1"));
  EXPECT_EQ(job.outputInfo.Flags() & hostsdk::kMapHasAlpha, hostsdk::kMapHasAlpha);
}

TEST_F(RenderFrameTest, KeepsTheRendererOpenAndWhatItReadForTheNextFrame) {
  ASSERT_EQ(render(1), "");
  host.core.renderOutput.SetName(at("changed.exr"));
  log.startAgain();
  ASSERT_EQ(render(2), "");
  EXPECT_THAT(told(), Not(Contains("Setting up render parameters")));
  EXPECT_THAT(told(), Not(Contains("Opening renderer")));
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\beauty0002.exr)"));
  EXPECT_EQ(host.calls.count("OpenCurRenderer"), 1);
}

TEST_F(RenderFrameTest, OpensTheRendererForEveryFrameInRestartMode) {
  job.settings.restartRendererMode = true;
  addElement(u"Z", at("z.exr"));
  ASSERT_EQ(render(1), "");
  EXPECT_FALSE(job.rendererOpen);
  EXPECT_THAT(job.elementOutputs, IsEmpty());
  host.core.renderOutput.SetName(at("changed.exr"));
  ASSERT_EQ(render(2), "");
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\changed0002.exr)", R"(OUT\z0002.exr)"));
  EXPECT_THAT(calls({"OpenCurRenderer", "CloseCurRenderer"}),
              ElementsAre(StartsWith("Open"), "CloseCurRenderer", StartsWith("Open"), "CloseCurRenderer"));
}

TEST_F(RenderFrameTest, SurvivesARendererThatCannotBeClosedForARestart) {
  job.settings.restartRendererMode = true;
  addElement(u"Z", at("z.exr"));
  host.calls.on("CloseCurRenderer", support::onCall(1, support::writingToNull()));
  EXPECT_THAT(render(1), StartsWith("Trapped SEH Exception in CloseCurRenderer(): Access Violation\nProcess:  "));
  EXPECT_TRUE(job.rendererOpen);
  EXPECT_EQ(render(2), "");
  EXPECT_THAT(told(), Contains("Rendering 0 render elements"));
}

struct NameCase {
  const char* what;
  bool removePadding;
  std::int32_t base;
  std::u16string given;  // outputImageFilename below the folder; empty: the scene's own
  std::string file;
};

class OutputName : public support::FrameFixture, public testing::WithParamInterface<NameCase> {};

TEST_P(OutputName, IsMadeFromTheSceneOrTheJob) {
  job.settings.removePadding = GetParam().removePadding;
  job.settings.frameNumberBase = GetParam().base;
  job.settings.useOutputImageFilename = !GetParam().given.empty();
  job.settings.outputImageFilename = at(narrow(GetParam().given));
  ASSERT_EQ(render(7), "");
  EXPECT_THAT(savedFiles(), ElementsAre("OUT\\" + GetParam().file));
}

INSTANTIATE_TEST_SUITE_P(Cases, OutputName,
                         testing::Values(NameCase{"numbered", false, 0, u"", "beauty0007.exr"},
                                         NameCase{"base", false, 100, u"", "beauty0107.exr"},
                                         NameCase{"negative", false, -10, u"", "beauty-003.exr"},
                                         NameCase{"unpadded", true, 100, u"", "beauty.exr"},
                                         NameCase{"given", false, 0, u"other.v2.png", "other.v20007.png"},
                                         NameCase{"given unpadded", true, 0, u"other.png", "other.png"},
                                         NameCase{"wrapping", false, 2147483647, u"", "beauty-2147483642.exr"}),
                         [](const auto& testCase) {
                           std::string name = testCase.param.what;
                           std::replace(name.begin(), name.end(), ' ', '_');
                           return name;
                         });

TEST_F(RenderFrameTest, NamesAFileByItsNumberWhenTheSceneNamesNone) {
  host.core.renderOutput.SetName(u"");
  host.core.renderSaveFile = true;
  host.calls.on("OpenOutput", answering(3));
  EXPECT_EQ(render(7), "Error in bm->OpenOutput(): error code 3");
  EXPECT_THAT(told(), Contains("Writing to output file: 0007"));
}

TEST_F(RenderFrameTest, RefusesNamesThatTheHostCannotTake) {
  const std::u16string folder = at("");
  const auto nameOfLength = [&](std::size_t length) {
    return folder + std::u16string(length - folder.size() - 8, u'n');
  };
  host.core.renderOutput.SetName(nameOfLength(259) + u".exr");
  EXPECT_EQ(render(7), "");
  EXPECT_EQ(job.savedOutputFiles.at(0).size(), 259U);
  job.rendererOpen = false;
  host.core.renderOutput.SetName(nameOfLength(260) + u".exr");
  EXPECT_THAT(render(7), AllOf(StartsWith("Output file name is too long: \""),
                               EndsWith("0007.exr\" (260 characters, at most 259)")));
  job.rendererOpen = false;
  host.core.renderOutput.SetName(at("beauty.exr"));
  addElement(u"Z", nameOfLength(300) + u".exr");
  EXPECT_THAT(render(7), StartsWith("Output file name is too long: "));
}

TEST_F(RenderFrameTest, SkipsAFrameWhoseFileExists) {
  job.settings.overrideSaveFile = true;
  job.settings.overrideSaveFileValue = true;
  host.core.renderSkipExisting = true;
  out.write("beauty0007.exr", "here");
  ASSERT_EQ(render(7), "");
  EXPECT_THAT(told(), ElementsAre("Render frame 7", "Overriding save file option to 1",
                                  R"(Skipping frame "OUT\beauty0007.exr" because it already exists)"));
  EXPECT_THAT(calls({"Create", "OpenCurRenderer", "DeleteThis", "CloseCurRenderer"}), IsEmpty());
  EXPECT_EQ(render(8), "");
  EXPECT_TRUE(out.exists("beauty0008.exr"));
}

TEST_F(RenderFrameTest, SavesElementsButNoMainOutputWhenTheSceneDoesNotSave) {
  job.settings.overrideSaveFile = true;
  job.settings.useJpegOutput = true;
  addElement(u"Z", at("deep/z.exr"));
  ASSERT_EQ(render(7), "");
  EXPECT_THAT(narrow(job.outputBaseName),
              AllOf(HasSubstr(R"(Halvquin\tessaryn\temp\temp_filename)"), EndsWith(".bmp")));
  EXPECT_THAT(told(), Contains("Overriding save file option to 0"));
  EXPECT_THAT(toldFrom("Checking output paths"),
              ElementsAre("Checking output paths", R"(Creating output path: OUT\deep)", "Checking default actions",
                          "Calling renderer", "CallCurRendererRenderFrame returned code 1", "Render done",
                          "Checking render elements", R"(Writing to output file: OUT\deep\z0007.exr)"));
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\deep\z0007.exr)"));
}

TEST_F(RenderFrameTest, LeavesTheMainOutputToARendererThatSavesItItself) {
  host.core.renderer.requirements = {2};
  job.settings.useJpegOutput = true;
  job.settings.jpegOutputPath = out.wide();
  failOnBlack(false);
  addElement(u"Z", at("z.exr"));
  ASSERT_EQ(render(7), "");
  EXPECT_THAT(told(), Contains(R"(Checking if OUT\beauty0007.exr is black)"));
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\z0007.exr)"));
  EXPECT_FALSE(out.exists("beauty0007.jpg"));
}

TEST_F(RenderFrameTest, RendersWithoutACurrentRendererToAsk) {
  host.core.hasRenderer = false;
  ASSERT_EQ(render(7), "");
  EXPECT_THAT(calls({"Create"}), ElementsAre(R"(Create OUT\beauty0007.exr 8x6 type 7)"));
}

TEST_F(RenderFrameTest, ShowsTheFrameBufferUnlessRendererAHasItsOwn) {
  job.settings.showFrameBuffer = true;
  ASSERT_EQ(render(7), "");
  EXPECT_THAT(calls({"Display", "CurRendererRenderFrame", "UnDisplay"}),
              ElementsAre("Display #1 none 5 0 1 none none", StartsWith("CurRendererRenderFrame"), "UnDisplay #1"));
  host.calls.clear();
  job.isRendererA = true;
  ASSERT_EQ(render(8), "");
  EXPECT_THAT(calls({"Display", "UnDisplay"}), IsEmpty());
}

TEST_F(RenderFrameTest, LeavesTheFrameBufferShownWhenTheRendererFails) {
  job.settings.showFrameBuffer = true;
  host.calls.on("CurRendererRenderFrame", answering(0));
  EXPECT_EQ(render(7), "Failed to render the frame.");
  EXPECT_THAT(calls({"Display", "UnDisplay", "DeleteThis"}), ElementsAre(StartsWith("Display #1"), "DeleteThis #1"));
}

struct Failure {
  const char* name;
  const char* operation;
  support::Hook hook;
  std::string text;
  std::string lastLine;
};

class FailingFrame : public support::FrameFixture, public testing::WithParamInterface<Failure> {};

TEST_P(FailingFrame, ReleasesEverythingAndNamesTheReason) {
  job.settings.showFrameBuffer = true;
  addElement(u"Z", at("z.exr"));
  addElement(u"N", at("n.exr"));
  host.calls.on(GetParam().operation, GetParam().hook);
  EXPECT_THAT(render(7), StartsWith(GetParam().text));
  EXPECT_EQ(told().back(), GetParam().lastLine);

  host.calls.off(GetParam().operation);
  EXPECT_EQ(render(8), "");
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\beauty0008.exr)", R"(OUT\z0008.exr)", R"(OUT\n0008.exr)"));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FailingFrame,
    testing::Values(
        Failure{"NoBitmap", "Create", answering(0), "Failed to allocate Bitmap: TheManager->Create() return NULL",
                R"(Rendering frame "OUT\beauty0007.exr")"},
        Failure{"ElementNaming", "Create", support::onCall(3, support::throwingStandard("out of memory")),
                "out of memory", R"(Rendering frame "OUT\beauty0007.exr")"},
        Failure{"Open", "OpenCurRenderer", answering(0), "Failed to open the max renderer.", "Opening renderer"},
        Failure{"Render", "CurRendererRenderFrame", answering(0), "Failed to render the frame.",
                "CallCurRendererRenderFrame returned code 0"},
        Failure{"RenderFaults", "CurRendererRenderFrame", support::writingToNull(),
                "Trapped SEH Exception in CurRendererRenderFrame(): Access Violation\nProcess:  ",
                "CallCurRendererRenderFrame returned code 0"},
        Failure{"RenderDividesByZero", "CurRendererRenderFrame", support::dividingByZero(),
                "Trapped SEH Exception in CurRendererRenderFrame(): Integer Divide By Zero\nProcess:  ",
                "CallCurRendererRenderFrame returned code 0"},
        Failure{"RenderThrows", "CurRendererRenderFrame", support::throwingStandard("renderer says no"),
                "renderer says no", "Calling renderer"},
        Failure{"OpenOutput", "OpenOutput", answering(11), "Error in bm->OpenOutput(): error code 11",
                R"(Writing to output file: OUT\beauty0007.exr)"},
        Failure{"Write", "Write", answering(12), "Error in bm->Write(): error code 12",
                R"(Writing to output file: OUT\beauty0007.exr)"},
        Failure{"ElementWrite", "OpenOutput", support::onCall(2, answering(13)),
                "Error in bm->OpenOutput(): error code 13", R"(Writing to output file: OUT\z0007.exr)"}),
    [](const auto& testCase) { return testCase.param.name; });

TEST_F(RenderFrameTest, FailsABlackFrameBeforeAnythingIsSaved) {
  failOnBlack(false);
  host.core.color = [](int x, int, hostsdk::TimeValue) {
    return x < 4 ? hostsdk::ColorFloat{0, 0, 0, 1} : hostsdk::ColorFloat{1, 1, 1, 1};
  };
  EXPECT_EQ(render(7), "50% of the output image is black, which equals or exceeds the minimum of 50%");
  EXPECT_THAT(toldFrom("Render done"),
              ElementsAre("Render done", R"(Checking if OUT\beauty0007.exr is black)", "  blackPixelPercentage = 50%",
                          "  blackPixelThreshold = 0.1", "24 of 48 pixels are considered black (50%)",
                          "50% of the output image is considered black, failing render..."));
  EXPECT_THAT(job.savedOutputFiles, IsEmpty());
  EXPECT_EQ(host.calls.count("OpenOutput"), 0);
}

TEST_F(RenderFrameTest, CannotBeTrickedIntoRenderingWithoutAJob) {
  job.jobRunning = false;
  job.hostCore = {};
  EXPECT_EQ(render(7), "RenderFrame called when consistency check flag jobRunning was not set");
  EXPECT_EQ(told().back(), "Rendering 1 passes");
  EXPECT_TRUE(job.rendererOpen);
}

TEST_F(RenderFrameTest, DoesNotTouchTheCameraOfAJobThatEnded) {
  addElement(u"Z", at("z.exr"));
  useMultipass(2);
  ASSERT_EQ(render(7), "");
  EndJob(job);
  host.core.elements.elements.front()->enabled = false;
  host.calls.clear();
  EXPECT_EQ(render(8), "RenderFrame called when consistency check flag jobRunning was not set");
  EXPECT_THAT(calls({"EvalWorldState", "TotalPasses", "OpenCurRenderer"}),
              ElementsAre("OpenCurRenderer none none 0 8x6"));
  EXPECT_THAT(told(), Contains("Rendering 0 render elements"));
}

TEST_F(RenderFrameTest, TrapsAFaultOutsideTheRenderer) {
  host.calls.on("SetTime", support::writingToNull());
  std::string sehText = "before";
  EXPECT_EQ(trappedRenderFrame(job, 7, connection, sehText), 1);
  EXPECT_EQ(sehText, "Trapped SEH Exception in RenderFrame(): Access Violation");
  EXPECT_THAT(job.crashDescription, StartsWith("Process:  "));

  host.calls.off("SetTime");
  EXPECT_EQ(trappedRenderFrame(job, 8, connection, sehText), 0);
  EXPECT_EQ(sehText, "");
  EXPECT_TRUE(out.exists("beauty0008.exr"));
}

TEST_F(RenderFrameTest, PassesThrownErrorsThroughTheTrap) {
  host.calls.on("OpenCurRenderer", answering(0));
  std::string sehText;
  EXPECT_EQ(errorOf([&] { trappedRenderFrame(job, 7, connection, sehText); }), "Failed to open the max renderer.");
  EXPECT_EQ(sehText, "");
}

TEST_F(RenderFrameTest, EmptiesTheListOfSavedFilesAtTheStartOfEveryFrame) {
  ASSERT_EQ(render(7), "");
  host.calls.on("CurRendererRenderFrame", answering(0));
  EXPECT_EQ(render(8), "Failed to render the frame.");
  EXPECT_THAT(job.savedOutputFiles, IsEmpty());
}

}  // namespace
}  // namespace corvantis
