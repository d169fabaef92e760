// A job run by a script, without a worker.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "interface_fixture.h"

namespace corvantis {
namespace {

using hostsdk::FPValue;
using testing::Contains;

class DebugMembers : public InterfaceTest {
 protected:
  bool start() { return call(u"Debug_StartJob", {text(u"C:\\a.max"), text(u"")}).i != 0; }
  bool render() { return call(u"Debug_RenderFrame", {FPValue::ofInt(5)}).i != 0; }
  bool end() { return call(u"Debug_EndJob").i != 0; }
  std::string printed() const { return support::narrow(scripts.printed()); }
};

TEST_F(DebugMembers, RunAJobAndReportFailuresToListenerAndLog) {
  const support::TemporaryFolder folder;
  host.core.renderOutput.SetName(folder.wide("beauty.exr"));
  EXPECT_FALSE(end());
  const std::string text = "EndJob called when consistency check flag jobRunning was not set";
  EXPECT_EQ(printed(), "Exception: " + text + "\n");
  EXPECT_THAT(log.lines(), Contains(text));
  EXPECT_FALSE(render());
  EXPECT_THAT(log.lines(), Contains("RenderFrame called when consistency check flag jobRunning was not set"));
  EXPECT_TRUE(start());
  EXPECT_FALSE(start());
  EXPECT_THAT(log.lines(), Contains("StartJob called when job was already running."));
  EXPECT_TRUE(render());
  EXPECT_EQ(host.core.time, 5 * host.core.ticksPerFrame);
  host.calls.on("ResetScene", support::throwingMax(u"reset"));
  EXPECT_THROW(end(), hostsdk::MAXException) << "the host's own errors reach the script";
  host.calls.off("ResetScene");
  EXPECT_TRUE(end());
}

TEST_F(DebugMembers, ReportFaultsToListenerAndLog) {
  host.calls.on("IsSceneFile", support::writingToNull());
  EXPECT_FALSE(start());
  EXPECT_EQ(printed(), "SEH Exception: Trapped SEH Exception in StartJob(): Access Violation\n");
  EXPECT_THAT(log.lines(), Contains("Trapped SEH Exception in StartJob(): Access Violation"));
  host.calls.off("IsSceneFile");
  EXPECT_TRUE(start());
  host.calls.on("SetTime", support::dividingByZero());
  EXPECT_FALSE(render());
  EXPECT_THAT(log.lines(), Contains("Trapped SEH Exception in RenderFrame(): Integer Divide By Zero"));
  host.calls.on("ResetScene", support::writingToNull());
  EXPECT_FALSE(end());
  EXPECT_THAT(log.lines(), Contains("Trapped SEH Exception in EndJob(): Access Violation"));
}

}  // namespace
}  // namespace corvantis
