// The job-control commands and the replies around them, through the socket.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/environment.h"
#include "support/daemon_fixture.h"

namespace corvantis {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

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
  EXPECT_TRUE(runLine("EndJob,whatever",
                      {"ERROR: EndJob called when consistency check flag jobRunning was not set", "SUCCESS"}));
  EXPECT_THAT(log.lines(), Contains("Sending error"));

  startAfresh();
  openJob();
  EXPECT_TRUE(runLine("StartJob,a.max,", {"ERROR: StartJob called when job was already running.", kLoaded}));
  EXPECT_THAT(log.lines(), AllOf(Contains("Sending error"), Contains("Sending success")));

  startAfresh();
  openJob();
  EXPECT_TRUE(runLine("EndJob", {"SUCCESS"}));
  EXPECT_FALSE(job->jobRunning);
}

TEST_F(JobCommands, AFaultLeavesTheJobAsItWas) {
  const struct {
    std::string line, operation, command, closing;
    bool open;
  } cases[] = {{"StartJob,a.max,", "SetDefaultAction", "StartJob", kLoaded, false},
               {"EndJob", "ResetScene", "EndJob", "SUCCESS", true}};
  for (const auto& c : cases) {
    startAfresh();
    if (c.open) openJob();
    host.calls.on(c.operation, support::writingToNull());
    worker->handshake("token").send(c.line);
    worker->expectThat(StartsWith("ERROR: Trapped SEH Exception in " + c.command + "(): Access Violation\nProcess:  "));
    worker->expect(c.closing).close();
    EXPECT_TRUE(run());
    EXPECT_EQ(job->jobRunning, c.open);
  }
}

TEST_F(JobCommands, HostErrorsOfTheJobEndTheConversation) {
  openJob();
  host.calls.on("ResetScene", support::throwingMax(u"reset"));
  worker->handshake("token").send("EndJob").expect("ERROR: MAXException caught in 3ds max: reset");
  EXPECT_FALSE(run());
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

TEST_F(JobCommands, RenderTaskReportsFailuresBeforeItsResult) {
  openJob();
  host.calls.on("SetTime", support::throwingStandard("no time"));
  worker->handshake("token").send("RenderTask,3").expect("STARTED");
  worker->skipUntil("ERROR: no time").expect("ERROR: Failed to save file.").close();
  EXPECT_TRUE(run());
  EXPECT_THAT(clock.sleeps(), ElementsAre(500));

  startAfresh();
  openJob();
  host.calls.on("SetTime", support::writingToNull());
  worker->handshake("token").send("RenderTask,3").expect("STARTED");
  worker->expect("FUNCTION: STDOUT: MaxCorvantis: Render frame 3");
  worker->expectThat(StartsWith("ERROR: Trapped SEH Exception in RenderFrame(): Access Violation\nProcess:  "));
  worker->expect("ERROR: Failed to save file.");
  // The same process goes on with the next command.
  worker->send("CurrentTask,9").close();
  EXPECT_TRUE(run());
  EXPECT_EQ(job->currentTask, 9);
  EXPECT_THAT(clock.sleeps(), ElementsAre(500, 500));
}

}  // namespace
}  // namespace corvantis
