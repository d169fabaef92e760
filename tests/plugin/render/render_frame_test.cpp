#include "plugin/render/render_frame.h"

#include <string>
#include <utility>
#include <vector>

#include "plugin/job/end_job.h"
#include "plugin/job/start_job.h"
#include "support/frame_fixture.h"
#include "support/scripted_peer.h"

namespace corvantis {
namespace {

using namespace support;
using namespace testing;

class RenderFrameTest : public FrameFixture {
 protected:
  // Renders the frame and expects the worker to be sent exactly these messages from the first of them on: lines of
  // the log, unless they begin with "FUNCTION".
  void expectSent(std::int32_t frame, const std::vector<std::string>& messages) {
    const auto sent = [](const std::string& message) {
      return (message.starts_with("FUNCTION") ? "" : "FUNCTION: STDOUT: MaxCorvantis: ") + message;
    };
    ScriptedPeer peer;
    peer.skipUntil(sent(messages.front()));
    for (auto message = messages.begin() + 1; message != messages.end(); ++message) peer.expect(sent(*message));
    peer.expectEnd();
    peer.start();
    connection.connect("127.0.0.1", peer.port(), 1);
    EXPECT_EQ(render(frame), "");
    connection.close(true);
    peer.finish();
  }
  std::string file(const std::string& name) const { return narrow(at(name)); }
};

TEST_F(RenderFrameTest, TellsEveryStageOfAJobsFirstFrame) {
  addElement(u"Z", u"");
  host.core.progress = {{u"Rendering Image...", 50, 100}};
  clock.setTickCount(3'000'000'000U);
  expectSent(7, {"Render frame 7",
                 "Rendering frame \"" + file("beauty0007.exr") + "\"",
                 "Rendering 1 render elements",
                 "Setting up render parameters",
                 "Rendering viewport",
                 "Opening renderer",
                 "Multipass disabled",
                 "Rendering 1 passes",
                 "Checking output paths",
                 "Checking default actions",
                 "  TYPE_MISSING_EXTERNAL_FILES = FAIL",
                 "  TYPE_MISSING_UVWS = FAIL",
                 "  TYPE_MISSING_DLL_FILES = FAIL",
                 "  TYPE_MISSING_XREF_FILES = FAIL",
                 "Calling renderer",
                 "FUNCTION: SETTITLE Rendering Image... - 50.0%",
                 "FUNCTION: PROGRESS 50",
                 "CallCurRendererRenderFrame returned code 1",
                 "Render done",
                 "Writing to output file: " + file("beauty0007.exr"),
                 "Checking render elements",
                 "FUNCTION: WARN: MaxCorvantis: Not saving render element 0 because its output path is empty"});
}

TEST_F(RenderFrameTest, TellsEveryPassAndSpreadsTheProgressOverThem) {
  useMultipass(2);
  addElement(u"Z", at("z.exr"));
  addElement(u"N", at("n.exr"));
  job.isRendererB = true;
  job.settings.saveRenderElements = false;
  host.core.progress = {{u"Compiling geometry 12%"}, {u"Rendering", 50, 100}};
  host.calls.on("CurRendererRenderFrame", [this]() -> std::optional<int> { return clock.advance(2000), std::nullopt; });
  clock.setTickCount(2'000'000'000U);
  std::vector<std::string> messages = {"Rendering multipass effect:"};
  for (const auto& [pass, overall] : {std::pair("1 of 2", "25"), std::pair("2 of 2", "75")}) {
    const std::string title = std::string("FUNCTION: SETTITLE Pass ") + pass + " - Rendering - 50.0%";
    messages.insert(messages.end(),
                    {std::string("  Rendering pass ") + pass, title, std::string("FUNCTION: PROGRESS ") + overall,
                     "  CallCurRendererRenderFrame returned code 1", "  Accumulating bitmap",
                     "  Accumulating render element 1 of 2", "  Accumulating render element 2 of 2", "  Success"});
  }
  messages.insert(messages.end(), {"Render done", "Writing to output file: " + file("beauty0008.exr")});
  expectSent(8, messages);
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
  host.calls.on("CloseCurRenderer", onCall(1, writingToNull()));
  EXPECT_THAT(render(1), StartsWith("Trapped SEH Exception in CloseCurRenderer(): Access Violation\nProcess:  "));
  EXPECT_TRUE(job.rendererOpen);
  EXPECT_EQ(render(1), "");
  EXPECT_THAT(told(), Contains("Rendering 0 render elements"));
  EXPECT_FALSE(job.rendererOpen);
  host.core.renderOutput.SetName(at("changed.exr"));
  host.calls.clear();
  for (const std::int32_t frame : {2, 3}) {
    ASSERT_EQ(render(frame), "");
    EXPECT_THAT(job.elementOutputs, IsEmpty());
    EXPECT_THAT(savedFiles(), SizeIs(2));
    EXPECT_EQ(savedFiles().front(), R"(OUT\changed000)" + std::to_string(frame) + ".exr");
  }
  EXPECT_THAT(calls({"OpenCurRenderer", "CloseCurRenderer"}),
              ElementsAre(StartsWith("Open"), "CloseCurRenderer", StartsWith("Open"), "CloseCurRenderer"));
}

TEST_F(RenderFrameTest, NamesItsOutputAsTheSceneOrTheJobSays) {
  const struct {
    bool removePadding;
    std::int32_t base;
    std::string given;  // outputImageFilename below the folder; empty: the scene's own
    std::string file;
  } cases[] = {{false, 0, "", "beauty0007.exr"},
               {false, 100, "", "beauty0107.exr"},
               {false, -10, "", "beauty-003.exr"},
               {true, 100, "", "beauty.exr"},
               {false, 0, "other.v2.png", "other.v20007.png"},
               {true, 0, "other.png", "other.png"},
               {false, 2147483647, "", "beauty-2147483642.exr"}};
  for (const auto& c : cases) {
    job.settings.removePadding = c.removePadding;
    job.settings.frameNumberBase = c.base;
    job.settings.useOutputImageFilename = !c.given.empty();
    job.settings.outputImageFilename = at(c.given);
    EXPECT_THAT(saved(7), ElementsAre("OUT\\" + c.file));
    EXPECT_TRUE(out.exists(c.file));
  }
}

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

TEST_F(RenderFrameTest, ReleasesEverythingAndNamesTheReasonOfAFailure) {
  const std::string fault = "Trapped SEH Exception in CurRendererRenderFrame(): ";
  const std::string called = "CallCurRendererRenderFrame returned code 0";
  const struct {
    const char* operation;
    Hook hook;
    std::string text, lastLine;
  } cases[] = {
      {"Create", answering(0), "Failed to allocate Bitmap: TheManager->Create() return NULL",
       R"(Rendering frame "OUT\beauty0007.exr")"},
      {"Create", onCall(3, throwingStandard("out of memory")), "out of memory",
       R"(Rendering frame "OUT\beauty0007.exr")"},
      {"OpenCurRenderer", answering(0), "Failed to open the max renderer.", "Opening renderer"},
      {"CurRendererRenderFrame", answering(0), "Failed to render the frame.", called},
      {"CurRendererRenderFrame", writingToNull(), fault + "Access Violation\nProcess:  ", called},
      {"CurRendererRenderFrame", dividingByZero(), fault + "Integer Divide By Zero\nProcess:  ", called},
      {"CurRendererRenderFrame", throwingStandard("renderer says no"), "renderer says no", "Calling renderer"},
      {"OpenOutput", answering(11), "Error in bm->OpenOutput(): error code 11",
       R"(Writing to output file: OUT\beauty0007.exr)"},
      {"Write", answering(12), "Error in bm->Write(): error code 12", R"(Writing to output file: OUT\beauty0007.exr)"},
      {"OpenOutput", onCall(2, answering(13)), "Error in bm->OpenOutput(): error code 13",
       R"(Writing to output file: OUT\z0007.exr)"},
  };
  job.settings.showFrameBuffer = true;
  addElement(u"Z", at("z.exr"));
  addElement(u"N", at("n.exr"));
  for (const auto& c : cases) {
    SCOPED_TRACE(c.operation + (" " + c.text));
    job.rendererOpen = false;
    host.calls.clear();
    host.calls.on(c.operation, c.hook);
    EXPECT_THAT(render(7), StartsWith(c.text));
    EXPECT_EQ(told().back(), c.lastLine);
    const int written = c.lastLine.ends_with("z0007.exr") ? 1 : 0;
    EXPECT_THAT(job.savedOutputFiles, SizeIs(written));
    EXPECT_THAT(host.bitmaps.live(), IsEmpty());
    EXPECT_EQ(host.calls.count("Close"), written) << "what could not be written is not closed";
    EXPECT_EQ(host.calls.count("UnDisplay"), c.lastLine.starts_with("Writing") ? 1 : 0);

    host.calls.off(c.operation);
    EXPECT_EQ(render(8), "");
    EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\beauty0008.exr)", R"(OUT\z0008.exr)", R"(OUT\n0008.exr)"));
  }
}

TEST_F(RenderFrameTest, FailsABlackFrameBeforeAnythingIsSaved) {
  failOnBlack(false);
  host.core.color = [](int x, int, hostsdk::TimeValue) {
    return x < 4 ? hostsdk::ColorFloat{0, 0, 0, 1} : hostsdk::ColorFloat{1, 1, 1, 1};
  };
  EXPECT_EQ(render(7), "50% of the output image is black, which equals or exceeds the minimum of 50%");
  EXPECT_THAT(told(), Contains(R"(Checking if OUT\beauty0007.exr is black)"));
  EXPECT_THAT(job.savedOutputFiles, IsEmpty());
  EXPECT_EQ(host.calls.count("OpenOutput"), 0);
}

TEST_F(RenderFrameTest, RendersNothingAndTouchesNoCameraOutsideAJob) {
  const std::string noJob = "RenderFrame called when consistency check flag jobRunning was not set";
  addElement(u"Z", at("z.exr"));
  useMultipass(2);
  ASSERT_EQ(render(7), "");
  EndJob(job);
  host.core.elements.elements.front()->enabled = false;
  host.calls.clear();
  EXPECT_EQ(render(8), noJob);
  EXPECT_THAT(calls({"EvalWorldState", "TotalPasses", "OpenCurRenderer"}),
              ElementsAre("OpenCurRenderer none none 0 8x6"));
  EXPECT_THAT(told(), Contains("Rendering 0 render elements"));
  job.rendererOpen = false;
  job.hostCore = {};
  EXPECT_EQ(render(9), noJob);
  EXPECT_EQ(told().back(), "Rendering 1 passes");
  EXPECT_TRUE(job.rendererOpen);
}

TEST_F(RenderFrameTest, GivesOneForAFaultOutsideTheRenderer) {
  host.calls.on("SetTime", writingToNull());
  EXPECT_EQ(trappedRenderFrame(job, 7, connection).value, 1);
  host.calls.off("SetTime");
  EXPECT_EQ(trappedRenderFrame(job, 8, connection).value, 0);
}

// A fault leaves the frame as it stands: nothing of it may show in the next frame's names, nor outlive the scene.
TEST_F(RenderFrameTest, TakesBackWhatAFaultAbandoned) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "a frame that faults is abandoned with the memory that its stack held: a leak by design";
#endif
  useMultipass(2);
  FakeElement& element = addElement(u"Z", at("z.exr"));
  const auto prepare = [&] {
    failOnBlack(false);
    useRegion(1, {0, 0, 8, 6});
    job.settings.regionPadding = 1;
  };
  const auto abandonFrame = [&](const char* operation, int call) {
    host.calls.on(operation, onCall(call, writingToNull()));
    EXPECT_EQ(trappedRenderFrame(job, 7, connection).value, 1);
    host.calls.off(operation);
    EXPECT_THAT(host.bitmaps.live(), Not(IsEmpty()));
  };
  // Creates: main, element, accumulator, passes, and what is cut out of main and element.
  const std::pair<const char*, int> faults[] = {{"Create", 2},     {"Create", 4},           {"Create", 5},
                                                {"SetupPass", 2},  {"AccumulateBitmap", 2}, {"Finish", 1},
                                                {"OpenOutput", 1}, {"OpenOutput", 2},       {"Write", 2}};
  for (const auto& [operation, call] : faults) {
    SCOPED_TRACE(Message() << operation << " " << call);
    prepare();
    abandonFrame(operation, call);
    EXPECT_THAT(saved(8), ElementsAre(R"(OUT\beauty0008.exr)", R"(OUT\z0008.exr)"));
    EXPECT_THAT(host.bitmaps.live(), IsEmpty());
    EXPECT_EQ(element.output.info.Name(), at("z.exr"));

    abandonFrame(operation, call);
    EndJob(job);
    EXPECT_THAT(host.bitmaps.live(), IsEmpty());
    EXPECT_EQ(element.output.info.Name(), at("z.exr"));
    StartJob(job, u"C:\\a.max", u"Cam");
  }
  // Nor does a frame outside any job leave it to the next scene; what faults again is not tried twice.
  EndJob(job);
  host.calls.on("Create", onCall(2, writingToNull()));
  EXPECT_TRUE(trappedRenderFrame(job, 7, connection).faulted());
  host.calls.off("Create");
  host.calls.on("DeleteThis", onCall(1, writingToNull()));
  EXPECT_TRUE(trappedStartJob(job, u"C:\\a.max", u"").faulted());
  EXPECT_FALSE(trappedStartJob(job, u"C:\\a.max", u"").faulted());
  EXPECT_EQ(element.output.info.Name(), at("z.exr"));
}

}  // namespace
}  // namespace corvantis
