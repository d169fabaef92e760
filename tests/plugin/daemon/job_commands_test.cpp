// The job-control commands and the replies around them, through the socket.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/environment.h"
#include "support/daemon_fixture.h"

namespace corvantis {
namespace {

using namespace testing;

constexpr const char* kLoaded = "SUCCESS Scene loaded successfully";

class JobCommands : public DaemonTest {};

TEST_F(JobCommands, NumbersAreCheckedAndStored) {
  const auto invalid = [](const std::string& word, const std::string& given, const std::string& what) {
    return std::pair(word + "," + given,
                     "ERROR: " + word + ": Parameter 1 , \"" + given + "\", is not a valid " + what + " number.");
  };
  runLines({invalid("CurrentTask", "x", "task"), invalid("CurrentTask", "-2147483649", "task"),
            invalid("RenderTask", "abc", "frame"), invalid("RenderTask", " 12", "frame")});
  EXPECT_EQ(job->currentTask, 0);
  EXPECT_EQ(job->currentFrame, 0);

  startAfresh();
  worker->handshake("token").send("\"Current\"Task,-12").send("RenderTask,12");
  worker->expect("ERROR: RenderTask: Called without being in a job.").close();
  EXPECT_TRUE(run());
  EXPECT_EQ(job->currentTask, -12);
  EXPECT_EQ(job->currentFrame, 12) << "stored outside a job too";
}

TEST_F(JobCommands, StartJobNotesTheSceneAndLoadsIt) {
  EXPECT_TRUE(runLine("StartJob,C:/scenes/a.max,", {kLoaded}));
  EXPECT_EQ(job->sceneFileName, u"a.max");
  EXPECT_EQ(job->sceneFilePath, u"C:\\scenes");
  EXPECT_TRUE(job->jobRunning);
  EXPECT_THAT(host.calls.lines(), Contains(AllOf(HasSubstr("LoadFromFile"), HasSubstr("C:/scenes/a.max"))));
  EXPECT_EQ(log.lines().rbegin()[1], "Sending success");

  startAfresh();
  runLine("StartJob,\"C:\\\\scenes\\\\b.max\",Camera",
          {"ERROR: Scene does not contain render camera \"Camera\"", kLoaded});
}

TEST_F(JobCommands, StartAndEndReportFailuresBeforeTheyCloseWithSuccess) {
  const struct {
    std::string line, faulting, error, closing;
    bool openBefore, openAfter;
  } cases[] = {
      {"EndJob,whatever", "", "EndJob called when consistency check flag jobRunning was not set", "SUCCESS", false,
       false},
      {"EndJob", "", "", "SUCCESS", true, false},
      {"EndJob", "ResetScene", "Trapped SEH Exception in EndJob(): Access Violation\nProcess:  ", "SUCCESS", true,
       true},
      {"StartJob,a.max,", "", "StartJob called when job was already running.", kLoaded, true, true},
      {"StartJob,a.max,", "SetDefaultAction",
       "Trapped SEH Exception in StartJob(): Access Violation\nProcess:  ", kLoaded, false, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line + " " + c.faulting);
    startAfresh();
    if (c.openBefore) openJob();
    if (!c.faulting.empty()) host.calls.on(c.faulting, support::writingToNull());
    worker->handshake("token").send(c.line);
    if (!c.error.empty()) worker->expectThat(StartsWith("ERROR: " + c.error));
    worker->expect(c.closing).close();
    EXPECT_TRUE(run());
    EXPECT_EQ(job->jobRunning, c.openAfter);
    const std::vector<std::string> lines = log.lines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Sending error"), c.error.empty() ? 0 : 1);
    host.calls.off(c.faulting);
  }
}

TEST_F(JobCommands, HostErrorsOfTheJobEndTheConversation) {
  const struct {
    std::string line;
    bool open;
    const char* throwing;
    std::vector<std::string> before;
  } cases[] = {{"StartJob,a.max,", false, "IsSceneFile", {}},
               {"RenderTask,3", true, "SetTime", {"STARTED", "FUNCTION: STDOUT: MaxCorvantis: Render frame 3"}},
               {"EndJob", true, "ResetScene", {}}};
  for (const auto& c : cases) {
    startAfresh();
    if (c.open) openJob();
    host.calls.on(c.throwing, support::throwingMax(u"gone"));
    worker->handshake("token").send(c.line);
    for (const std::string& message : c.before) worker->expect(message);
    worker->expect("ERROR: MAXException caught in 3ds max: gone");
    EXPECT_FALSE(run()) << c.line;
    EXPECT_EQ(job->jobRunning, c.open) << c.line;
  }
}

TEST_F(JobCommands, RenderTaskRendersAndTellsTheResultLast) {
  const support::TemporaryFolder folder;
  host.core.renderOutput.SetName(folder.wide("beauty.exr"));
  worker->handshake("token").send("StartJob,a.max,").expect(kLoaded);
  worker->send("RenderTask,3").expect("STARTED").skipUntil("SUCCESS");
  worker->send("RenderTask,4").expect("STARTED").skipUntil("SUCCESS");
  worker->send("EndJob").expect("SUCCESS").close();
  EXPECT_TRUE(run());
  EXPECT_EQ(job->currentFrame, 4);
  EXPECT_EQ(host.calls.count("CurRendererRenderFrame"), 2);
}

// A second conversation finds everything as the first has left it.
TEST_F(JobCommands, AJobOutlivesTheConversation) {
  const support::TemporaryFolder folder;
  host.core.renderOutput.SetName(folder.wide("beauty.exr"));
  worker->handshake("token").send("StartJob,C:\\\\scenes\\\\a.max,").expect(kLoaded).send("FrameNumberBase,100");
  worker->send("RenderTask,3").expect("STARTED").skipUntil("SUCCESS").close();
  EXPECT_TRUE(run());
  worker = std::make_unique<support::ScriptedPeer>();
  worker->handshake("token").send("StartJob,b.max,").expect("ERROR: StartJob called when job was already running.");
  worker->expect(kLoaded).send("FrameNumberBase,200").send("RenderTask,4").expect("STARTED").skipUntil("SUCCESS");
  worker->send("EndJob").expect("SUCCESS").close();
  EXPECT_TRUE(run());
  EXPECT_THAT(
      host.calls.linesOf({"LoadFromFile", "OpenCurRenderer", "CloseCurRenderer", "ResetScene"}),
      ElementsAre(StartsWith("LoadFromFile"), StartsWith("OpenCurRenderer"), "CloseCurRenderer", "ResetScene 1"));
  EXPECT_THAT(host.bitmaps.written, ElementsAre(Field(&support::WrittenImage::name, folder.wide("beauty0103.exr")),
                                                Field(&support::WrittenImage::name, folder.wide("beauty0204.exr"))));
}

// What the renderer tells is not worth a frame.
TEST_F(JobCommands, ARendererWhoseTitleIsNoTextRendersOn) {
  const support::TemporaryFolder folder;
  host.core.renderOutput.SetName(folder.wide("beauty.exr"));
  host.core.progress = {{u"broken \xd800", 10, 100}};
  clock.setTickCount(3'500'000'000U);  // a report is due
  openJob();
  worker->handshake("token").send("RenderTask,3").expect("STARTED").skipUntil("SUCCESS").close();
  EXPECT_TRUE(run());
  EXPECT_THAT(log.lines(), Contains("progress could not be reported: Invalid UTF-16"));
}

TEST_F(JobCommands, RenderTaskReportsFailuresBeforeItsResultAndTheProcessGoesOn) {
  const std::pair<support::Hook, std::string> cases[] = {
      {support::throwingStandard("no time"), "no time"},
      {support::writingToNull(), "Trapped SEH Exception in RenderFrame(): Access Violation\nProcess:  "}};
  for (const auto& [hook, error] : cases) {
    startAfresh();
    openJob();
    host.calls.on("SetTime", hook);
    worker->handshake("token").send("RenderTask,3").expect("STARTED");
    worker->expect("FUNCTION: STDOUT: MaxCorvantis: Render frame 3").expectThat(StartsWith("ERROR: " + error));
    worker->expect("ERROR: Failed to save file.").send("CurrentTask,9").close();
    EXPECT_TRUE(run());
    EXPECT_EQ(job->currentTask, 9);
  }
  EXPECT_THAT(clock.sleeps(), ElementsAre(500, 500));
}

}  // namespace
}  // namespace corvantis
