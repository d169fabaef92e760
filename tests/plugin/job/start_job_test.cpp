#include "plugin/job/start_job.h"

#include "hostsdk/exceptions.h"
#include "plugin/job/end_job.h"
#include "support/faults.h"
#include "support/job_fixture.h"

namespace corvantis {
namespace {

using namespace testing;

const std::u16string kScene = u"C:\\scenes\\shot.max";

class StartOfJob : public support::JobFixture {
 protected:
  std::string start(const std::u16string& camera = u"") {
    return errorOf([&] { StartJob(job, kScene, camera); });
  }
  static std::string pointerText(const void* pointer) {
    std::ostringstream text;
    text << pointer;
    return text.str();
  }
};

TEST_F(StartOfJob, TakesItsStepsInOrder) {
  job.settings.gammaCorrection = true;
  job.settings.gammaIn = 1.8F;
  job.settings.gammaOut = 2.2F;
  job.settings.usePathConfigFile = true;
  job.settings.pathConfigFile = u"D:\\paths.mxp";
  host.core.viewports[0].camera = &host.core.addNode(u"Cam", &host.core.addCamera());
  EXPECT_EQ(start(), "");
  std::vector<std::string> lines = log.lines();
  std::erase_if(lines, [](const std::string& line) { return line.starts_with("Not ignoring "); });
  EXPECT_THAT(lines, ElementsAre("StartJob begin", "setting up gamma settings", "setting up default actions",
                                 "Loading alternate path config file D:\\paths.mxp", "Checking max file validity...",
                                 "Trying to load max file...", "Successfully loaded the max file",
                                 "setting up gamma settings again, just to ensure they're set",
                                 "setting up default actions again, just to ensure they're set",
                                 "Got the active viewport: " + pointerText(job.renderViewport),
                                 "Rendering viewport with camera: Cam"));
  EXPECT_EQ(log.lines().size() - lines.size(), 8U);
  EXPECT_THAT(
      host.calls.linesOf({"Enable", "SetFileInGamma", "SetFileOutGamma", "LoadPathConfiguration", "IsSceneFile",
                          "LoadFromFile", "MessageCount", "ActiveViewport", "CurrentRenderer"}),
      ElementsAre("Enable 1", "SetFileInGamma 1.8", "SetFileOutGamma 2.2", "LoadPathConfiguration D:\\paths.mxp",
                  "IsSceneFile C:\\scenes\\shot.max", "LoadFromFile C:\\scenes\\shot.max 14", "MessageCount 3",
                  "Enable 1", "SetFileInGamma 1.8", "SetFileOutGamma 2.2", "ActiveViewport", "CurrentRenderer create",
                  "CurrentRenderer create", "CurrentRenderer create"));
  EXPECT_EQ(host.calls.count("SetDefaultAction"), 8);
  EXPECT_TRUE(job.jobRunning);
  EXPECT_EQ(job.renderViewport, &host.core.viewports[0]);
  EXPECT_EQ(job.renderCamera, host.core.viewports[0].camera);

  EndJob(job);  // where path files are to be merged, and the view is no camera's
  host.calls.clear();
  job.settings.gammaCorrection = false;
  job.settings.mergePathConfigFile = true;
  host.core.viewports[0].camera = nullptr;
  host.calls.on("MergePathConfiguration", support::answering(0));  // is not examined
  EXPECT_EQ(start(), "");
  EXPECT_THAT(host.calls.linesOf(
                  {"Enable", "SetFileInGamma", "SetFileOutGamma", "LoadPathConfiguration", "MergePathConfiguration"}),
              ElementsAre("MergePathConfiguration D:\\paths.mxp"));
  EXPECT_THAT(log.lines(), Contains("Merging alternate path config file D:\\paths.mxp"));
  EXPECT_EQ(job.renderCamera, nullptr);
  EXPECT_EQ(log.lines().back(), "Viewport is not a camera, so its current view will be rendered");

  EndJob(job);
  job.settings.usePathConfigFile = false;
  EXPECT_EQ(start(), "");
  EXPECT_EQ(host.calls.count("MergePathConfiguration"), 1);
}

TEST_F(StartOfJob, ASecondOneIsRefusedButResetsTheSettings) {
  EXPECT_EQ(start(), "");
  job.settings.frameNumberBase = 100;
  job.settings.failOnBlackFrames = true;
  job.isRendererB = true;
  job.rendererOpen = true;
  host.calls.clear();
  EXPECT_EQ(start(), "StartJob called when job was already running.");
  EXPECT_TRUE(job.jobRunning && job.rendererOpen);
  EXPECT_EQ(job.settings.frameNumberBase, 0);
  EXPECT_FALSE(job.settings.failOnBlackFrames);
  EXPECT_FALSE(job.isRendererB);
  EXPECT_THAT(host.calls.lines(), ElementsAre());
}

TEST_F(StartOfJob, ClosesARendererThatAFrameOutsideAnyJobLeftOpen) {
  job.rendererOpen = true;
  host.calls.on("CloseCurRenderer", support::onCall(1, support::writingToNull()));
  EXPECT_THAT(start(), StartsWith("Trapped SEH Exception in CloseCurRenderer(): Access Violation\nProcess:  "));
  EXPECT_EQ(host.calls.count("LoadFromFile"), 0);
  EXPECT_FALSE(job.jobRunning);

  EXPECT_EQ(start(), "");
  EXPECT_FALSE(job.rendererOpen);
  host.calls.clear();
  EndJob(job);
  EXPECT_THAT(host.calls.lines(), ElementsAre("ResetScene 1"));
}

TEST_F(StartOfJob, FailsWithTheTextOfWhatWentWrong) {
  const std::string scene = "\"C:\\scenes\\shot.max\"", fault = "Trapped SEH Exception in LoadFromFile(): ";
  const std::string inLoad = " in GetCOREInterface()->LoadFromFile(): ", started = "Trying to load max file...";
  struct Case {
    const char* operation;
    support::Hook hook;
    std::string error, lastLine;
  };
  std::vector<Case> cases = {
      {"IsSceneFile", support::answering(0), "Invalid max file: " + scene, "Checking max file validity..."},
      {"LoadFromFile", support::answering(0), "Failed to load max file: " + scene, "LoadFromFile() returned failure"},
      {"LoadFromFile", support::throwingStandard("disk gone"), "Caught an exception" + inLoad + "disk gone",
       "catch(std::exception& e) from LoadFromFile()"},
      {"LoadFromFile", support::throwingMax(u"caf\u00e9"), "Caught a MAXException" + inLoad + "caf\xe9",
       "catch(MAXException& e) from LoadFromFile()"},
      {"LoadFromFile", support::throwingOther(), "3ds max crashed" + inLoad + scene, "catch(...) from LoadFromFile()"},
      {"LoadFromFile", support::writingToNull(), fault + "Access Violation\n", started},
  };
#if !defined(__SANITIZE_ADDRESS__)  // which does not check frames at the end of the stack
  if (support::stackOverflowCanBeTold())
    cases.push_back(
        {"LoadFromFile", support::faulting([] { support::overflowStack(); }), fault + "Stack Overflow\n", started});
#endif
  for (const Case& c : cases) {
    log.startAgain();
    host.calls.on(c.operation, c.hook);
    const std::string error = start();
    EXPECT_EQ(error, c.error + (c.lastLine == started ? job.crashDescription : ""));
    EXPECT_EQ(log.lines().back(), c.lastLine);
    EXPECT_FALSE(job.jobRunning);
    host.calls.off(c.operation);
    EXPECT_EQ(start(), "") << "after " << c.error;
    EndJob(job);
  }
  host.calls.on("IsSceneFile", support::throwingMax(u"no such drive"));  // what the host throws elsewhere is its own
  EXPECT_THROW(trappedStartJob(job, kScene, u""), hostsdk::MAXException);
  EXPECT_FALSE(job.jobRunning);
}

TEST_F(StartOfJob, FailsWithTheHostsTextForAMissingXref) {
  host.core.defaultActions.messages[3] = {u"Missing XREF props.max", u"another"};
  EXPECT_EQ(start(), "Missing XREF props.max");
  EXPECT_THAT(host.calls.linesOf({"MessageCount", "MessageText"}), ElementsAre("MessageCount 3", "MessageText 3 0"));
  EXPECT_FALSE(job.jobRunning);
}

TEST_F(StartOfJob, ReportsAFaultElsewhereThroughTheTrap) {
  for (const char* operation :
       {"DefaultActionSystem", "IsSceneFile", "MessageCount", "ActiveViewport", "CurrentRenderer"}) {
    host.calls.on(operation, support::dividingByZero());
    EXPECT_EQ(trappedStartJob(job, kScene, u"").sehText, "Trapped SEH Exception in StartJob(): Integer Divide By Zero")
        << operation;
    EXPECT_THAT(job.crashDescription, HasSubstr("Exception Code:  C0000094"));
    EXPECT_THAT(job.crashDescription, Not(HasSubstr("Address:  ")));
    EXPECT_FALSE(job.jobRunning);
    host.calls.off(operation);
  }
  EXPECT_FALSE(trappedStartJob(job, kScene, u"").faulted());
  EXPECT_TRUE(job.jobRunning);
}

TEST_F(StartOfJob, RendersTheNamedCameraOfTheActiveViewport) {
  support::FakeNode& named = host.core.addNode(u"Named", nullptr);  // whether it is a camera is tested later
  host.core.viewports[1].camera = &host.core.addNode(u"Other", &host.core.addCamera());
  host.core.activeViewport = 1;
  job.renderViewLocked = true;
  EXPECT_EQ(start(u"Kamera \u00fc"), "Scene does not contain render camera \"Kamera \xfc\"");
  EXPECT_FALSE(job.jobRunning);
  EXPECT_EQ(start(u"Named"), "");
  EXPECT_EQ(job.renderViewport, &host.core.viewports[1]);
  EXPECT_EQ(job.renderCamera, &named);
  EXPECT_FALSE(job.renderViewLocked);
  EXPECT_EQ(log.lines().back(), "Got the active viewport: " + pointerText(job.renderViewport));
}

TEST_F(StartOfJob, LetsALockedViewportDecide) {
  host.core.usesActiveViewport = false;
  host.core.lockedViewportIndex = 2;
  host.core.viewports[2].camera = &host.core.addNode(u"Locked camera", nullptr);
  EXPECT_EQ(start(u"not in the scene"), "");
  EXPECT_TRUE(job.renderViewLocked);
  EXPECT_EQ(job.lockedViewportIndex, 2);
  EXPECT_EQ(job.renderViewport, &host.core.viewports[2]);
  EXPECT_EQ(job.renderCamera, host.core.viewports[2].camera);
  EXPECT_EQ(host.calls.count("NodeByName"), 0);
  const std::vector<std::string> lines = log.lines();
  EXPECT_THAT(std::vector<std::string>(lines.end() - 3, lines.end()),
              ElementsAre("Viewport 2 is locked", "Got the locked viewport: " + pointerText(job.renderViewport),
                          "Rendering viewport with camera: Locked camera"));

  EndJob(job);
  host.calls.on("Viewport", support::answering(0));  // one that is not there is a view
  EXPECT_EQ(start(), "");
  EXPECT_EQ(job.renderViewport, nullptr);
  EXPECT_EQ(job.renderCamera, nullptr);
}

TEST_F(StartOfJob, RecognisesTheRenderer) {
  const struct {
    hostsdk::Class_ID id;
    char renderer;
    int fetches;
  } cases[] = {{{0x52ad1c02, 0x112d2fbc}, 'A', 1},
               {{0x73bab286, 0x77f8fd0c}, 'B', 2},
               {{0x58f67d6c, 0x4fcf3bc3}, 'C', 3},
               {{0x52ad1c02, 0x77f8fd0c}, '-', 3},
               {{0x112d2fbc, 0x52ad1c02}, '-', 3}};
  for (const auto& c : cases) {
    host.core.renderer.classId = c.id;
    host.calls.clear();
    EXPECT_EQ(start(), "");
    EXPECT_EQ(job.isRendererA, c.renderer == 'A');
    EXPECT_EQ(job.isRendererB, c.renderer == 'B');
    EXPECT_EQ(job.isRendererC, c.renderer == 'C');
    EXPECT_EQ(host.calls.count("CurrentRenderer"), c.fetches);
    EndJob(job);
  }
  support::FakeHost next;  // every start fetches the core afresh
  next.core.hasRenderer = false;
  EXPECT_EQ(start(), "");
  EXPECT_FALSE(job.isRendererA || job.isRendererB || job.isRendererC);
  EXPECT_TRUE(job.hostCore.v8 == &next.core && job.hostCore.v11 == &next.core && job.hostCore.v14 == &next.core);
}

}  // namespace
}  // namespace corvantis
