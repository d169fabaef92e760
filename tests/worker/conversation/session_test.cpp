// The conversation against a plug-in that is a list of what it expects and says.
#include "worker/conversation/session.h"

#include <gtest/gtest.h>

#include <deque>

namespace worker {
namespace {

// ">text" is expected from the worker, "<text" is sent to it, "!text" is a lost host.
class ListedPlugin : public Connection {
 public:
  explicit ListedPlugin(std::deque<std::string> steps) : steps_(std::move(steps)) {}

  void send(const std::string& payload) override {
    if (steps_.empty() || steps_.front() != ">" + payload)
      ADD_FAILURE() << "the worker sent " << payload << "\nexpected   "
                    << (steps_.empty() ? "nothing" : steps_.front());
    else
      steps_.pop_front();
  }
  std::string receive() override {
    if (steps_.empty() || steps_.front().front() == '>') {
      ADD_FAILURE() << "the worker waits; next is " << (steps_.empty() ? "nothing" : steps_.front());
      throw HostFailure("the list ended");
    }
    const std::string step = steps_.front();
    steps_.pop_front();
    if (step.front() == '!') throw HostFailure(step.substr(1));
    return step.substr(1);
  }
  bool done() const { return steps_.empty(); }

 private:
  std::deque<std::string> steps_;
};

class Recorder : public JobObserver {
 public:
  void jobStarted(const Job&, const std::string& version) override { seen.push_back("job " + version); }
  void frameStarted(std::size_t index) override { seen.push_back("begin " + std::to_string(index)); }
  void frameFinished(std::size_t index, const FrameResult& f) override {
    seen.push_back("end " + std::to_string(index) + (f.rendered ? " ok" : " failed"));
  }
  void progress(float percent) override { seen.push_back("progress " + std::to_string(static_cast<int>(percent))); }
  void title(const std::string& text) override { seen.push_back("title " + text); }
  void log(const std::string& text) override { seen.push_back("log " + text); }
  void warning(const std::string& text) override { seen.push_back("warning " + text); }
  std::vector<std::string> seen;
};

Job smallJob() {
  Job job;
  job.scene = "/scenes/a.gltf";
  job.frames = {1};
  return job;
}

const std::deque<std::string> kOpened{"<secret", ">TessarynStartup", "<Corvantis May 27 2019 17:22:03 R",
                                      ">StartJob,\\\\scenes\\\\a.gltf,", "<SUCCESS Scene loaded successfully"};

std::deque<std::string> afterOpening(std::initializer_list<const char*> steps) {
  std::deque<std::string> all = kOpened;
  all.insert(all.end(), steps.begin(), steps.end());
  return all;
}

JobResult run(const Job& job, ListedPlugin& plugin, Recorder& recorder) {
  double time = 0;
  const std::string token = "secret";
  return Session(job, token, plugin, recorder, [&] { return time += 0.5; }).run();
}

TEST(Session, RunsAWholeJob) {
  Job job = smallJob();
  job.camera = "Cam, 1";
  job.output = "/out/beauty.exr";
  job.jpegFolder = "/out/preview";
  job.frames = {1, 5};
  job.settings = {{"RemovePadding"}, {"GammaCorrection", "2.2", "2.2"}};
  job.jobInfo["Name"] = "x";
  ListedPlugin plugin({"<secret",
                       ">TessarynStartup",
                       "<Corvantis May 27 2019 17:22:03 R",
                       ">GammaCorrection,2.2,2.2",  // acts when the scene is opened
                       ">StartJob,\\\\scenes\\\\a.gltf,Cam\\, 1",
                       "<SUCCESS Scene loaded successfully",
                       ">RemovePadding",  // is reset when the scene is opened
                       ">OutputImageFilename,\\\\out\\\\beauty.exr",
                       ">OverrideSaveFile,1",
                       ">UseJpegOutput,\\\\out\\\\preview",
                       ">CurrentTask,0",
                       ">RenderTask,1",
                       "<STARTED",
                       "<FUNCTION: STDOUT: MaxCorvantis: Render frame 1",
                       "<FUNCTION: GETJOBINFOENTRY Name",
                       ">SUCCESS: x",
                       "<FUNCTION: SETTITLE Rendering - 50.0%",
                       "<FUNCTION: PROGRESS 50",
                       "<FUNCTION: WARN: careful",
                       "<FUNCTION: STDOUT: MaxCorvantis: Writing to output file: \\out\\beauty0001.exr",
                       "<SUCCESS",
                       ">CurrentTask,1",
                       ">RenderTask,5",
                       "<STARTED",
                       "<SUCCESS",
                       ">EndJob",
                       "<SUCCESS"});
  Recorder recorder;
  const JobResult result = run(job, plugin, recorder);
  EXPECT_TRUE(plugin.done());
  EXPECT_EQ(result.status, JobStatus::done);
  EXPECT_EQ(result.pluginVersion, "May 27 2019 17:22:03 R");
  ASSERT_EQ(result.frames.size(), 2U);
  EXPECT_TRUE(result.frames[0].rendered && result.frames[1].rendered);
  EXPECT_EQ(result.frames[0].files, std::vector<std::string>{"/out/beauty0001.exr"});
  EXPECT_GT(result.frames[0].seconds, 0);
  EXPECT_EQ(recorder.seen,
            (std::vector<std::string>{"job May 27 2019 17:22:03 R", "begin 0", "log MaxCorvantis: Render frame 1",
                                      "title Rendering - 50.0%", "progress 50", "warning careful",
                                      "log MaxCorvantis: Writing to output file: \\out\\beauty0001.exr", "end 0 ok",
                                      "begin 1", "end 1 ok"}));
}

TEST(Session, AFailedFrameCarriesThePluginsWordsAndTheNextIsRendered) {
  Job job = smallJob();
  job.frames = {1, 2, 3};
  ListedPlugin plugin(
      afterOpening({">CurrentTask,0", ">RenderTask,1", "<STARTED", "<ERROR: Failed to render the frame.",
                    "<ERROR: Failed to save file.", ">CurrentTask,1", ">RenderTask,2",
                    "<ERROR: RenderTask: Called without being in a job.", ">CurrentTask,2", ">RenderTask,3", "<STARTED",
                    "<SUCCESS", ">EndJob", "<SUCCESS"}));
  Recorder recorder;
  const JobResult result = run(job, plugin, recorder);
  EXPECT_TRUE(plugin.done());
  EXPECT_EQ(result.status, JobStatus::done);
  ASSERT_EQ(result.frames.size(), 3U);
  EXPECT_EQ(result.frames[0].errors, std::vector<std::string>{"Failed to render the frame."});
  EXPECT_EQ(result.frames[1].errors, std::vector<std::string>{"RenderTask: Called without being in a job."});
  EXPECT_TRUE(result.frames[2].rendered);
}

TEST(Session, StopsAfterAFailedFrameWhenAsked) {
  Job job = smallJob();
  job.frames = {1, 2};
  job.stopOnError = true;
  ListedPlugin plugin(afterOpening(
      {">CurrentTask,0", ">RenderTask,1", "<STARTED", "<ERROR: Failed to save file.", ">EndJob", "<SUCCESS"}));
  Recorder recorder;
  const JobResult result = run(job, plugin, recorder);
  EXPECT_TRUE(plugin.done());
  ASSERT_EQ(result.frames.size(), 1U);
  EXPECT_EQ(result.frames[0].errors, std::vector<std::string>{"Failed to save file."});
}

TEST(Session, RunsScriptsAroundTheFrames) {
  Job job = smallJob();
  job.preJobScripts = {"/s/pre.ms"};
  job.perFrameScripts = {"/s/frame.ms"};
  job.postJobScripts = {"/s/post.ms"};
  ListedPlugin plugin(afterOpening(
      {">ExecuteMaxScriptFile,\\\\s\\\\pre.ms,false,0,false", "<STARTED", "<SUCCESS", ">CurrentTask,0",
       ">ExecuteMaxScriptFile,\\\\s\\\\frame.ms,true,1,false", "<STARTED", "<SUCCESS", ">RenderTask,1", "<STARTED",
       "<SUCCESS", ">ExecuteMaxScriptFile,\\\\s\\\\post.ms,false,0,false", "<STARTED", "<ERROR: it broke"}));
  Recorder recorder;
  const JobResult result = run(job, plugin, recorder);
  EXPECT_TRUE(plugin.done());
  EXPECT_EQ(result.status, JobStatus::refused);
  EXPECT_EQ(result.message, "Script /s/post.ms: it broke");
}

TEST(Session, ANoticeOfANewerPluginIsAWarning) {
  ListedPlugin plugin(afterOpening(
      {">CurrentTask,0", ">RenderTask,1", "<STARTED", "<FUNCTION: DANCE now", "<SUCCESS", ">EndJob", "<SUCCESS"}));
  Recorder recorder;
  const JobResult result = run(smallJob(), plugin, recorder);
  EXPECT_TRUE(plugin.done());
  EXPECT_EQ(result.status, JobStatus::done);
  ASSERT_EQ(result.frames.size(), 1U);
  EXPECT_TRUE(result.frames[0].rendered);
  EXPECT_EQ(recorder.seen.at(2),
            "warning The plug-in sent a notice that this worker does not know: FUNCTION: DANCE now");
}

TEST(Session, EveryWayAJobCanBeRefusedOrLost) {
  const struct {
    const char* name;
    std::deque<std::string> steps;
    JobStatus status;
    const char* message;
  } cases[] = {
      {"wrong token", {"<other"}, JobStatus::hostFailed, "Something other than the host connected"},
      {"wrong identification", {"<secret", ">TessarynStartup", "<Hello"}, JobStatus::hostFailed, "got \"Hello\""},
      {"lost in handshake", {"<secret", ">TessarynStartup", "!gone"}, JobStatus::hostFailed, "gone"},
      {"scene refused",
       {"<secret", ">TessarynStartup", "<Corvantis x", ">StartJob,\\\\scenes\\\\a.gltf,",
        "<ERROR: Invalid max file: \"a\"", "<SUCCESS Scene loaded successfully"},
       JobStatus::refused,
       "Invalid max file: \"a\""},
      {"setting refused",
       afterOpening({">CurrentTask,0", ">RenderTask,1", "<ERROR: FrameNumberBase: Expected 1 parameter, got 0"}),
       JobStatus::refused, "FrameNumberBase: Expected 1 parameter"},
      {"lost while rendering", afterOpening({">CurrentTask,0", ">RenderTask,1", "<STARTED", "!it died"}),
       JobStatus::hostFailed, "it died"},
      {"nonsense", afterOpening({">CurrentTask,0", ">RenderTask,1", "<STARTED", "<DANCE"}), JobStatus::hostFailed,
       "not part of the protocol: DANCE"},
      {"end of job fails",
       afterOpening(
           {">CurrentTask,0", ">RenderTask,1", "<STARTED", "<SUCCESS", ">EndJob", "<ERROR: stuck", "<SUCCESS"}),
       JobStatus::refused, "stuck"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    ListedPlugin plugin(c.steps);
    Recorder recorder;
    const JobResult result = run(smallJob(), plugin, recorder);
    EXPECT_TRUE(plugin.done());
    EXPECT_EQ(result.status, c.status);
    EXPECT_NE(result.message.find(c.message), std::string::npos) << result.message;
  }
}

}  // namespace
}  // namespace worker
