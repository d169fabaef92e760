// The conversation against a plug-in that is a list of what it expects and says.
#include "worker/conversation/session.h"

#include <gtest/gtest.h>

#include <deque>
#include <sstream>

namespace worker {
namespace {

// Its steps are parted by "|": ">text" is expected from the worker, "<text" is sent to it, "!text" is a lost host.
class ListedPlugin : public Connection {
 public:
  explicit ListedPlugin(const std::string& steps) {
    std::istringstream stream(steps);
    for (std::string step; std::getline(stream, step, '|');) steps_.push_back(step);
  }

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

// Runs the job against the steps, all of which must be taken. Every call of the clock is half a second later.
JobResult run(const Job& job, const std::string& steps, JobObserver& observer) {
  double time = 0;
  ListedPlugin plugin(steps);
  JobResult result = Session(job, plugin, observer, [&] { return time += 0.5; }).run();
  EXPECT_TRUE(plugin.done());
  return result;
}

TEST(Session, RunsAWholeJob) {
  Job job;
  job.scene = "/scenes/a.gltf";
  job.camera = "Cam, 1";
  job.output = "/out/beauty.exr";
  job.jpegFolder = "/out/preview";
  job.localFolder = "/local";
  job.frames = {1, 5};
  job.settings = {{"RemovePadding"}, {"GammaCorrection", "2.2", "2.2"}};
  job.jobInfo["Name"] = "x";
  Recorder recorder;
  const JobResult result =
      run(job,
          ">TessarynStartup|<Corvantis May 27 2019 17:22:03 R|"
          ">GammaCorrection,2.2,2.2|>TempFolder,\\\\local|"  // act when the scene is opened
          ">StartJob,\\\\scenes\\\\a.gltf,Cam\\, 1|<SUCCESS Scene loaded successfully|"
          ">RemovePadding|>LocalRendering|>OutputImageFilename,\\\\out\\\\beauty.exr|"  // are reset when it is opened
          ">OverrideSaveFile,1|>UseJpegOutput,\\\\out\\\\preview|"
          ">CurrentTask,0|>RenderTask,1|<STARTED|<FUNCTION: STDOUT: MaxCorvantis: Render frame 1|"
          "<FUNCTION: GETJOBINFOENTRY Name|>SUCCESS: x|<FUNCTION: SETTITLE Rendering - 50.0%|"
          "<FUNCTION: PROGRESS 50|<FUNCTION: WARN: careful|<FUNCTION: DANCE now|"
          "<FUNCTION: STDOUT: MaxCorvantis: Writing to output file: \\local\\beauty0001.exr|"
          "<FUNCTION: STDOUT: MaxCorvantis: Saved image to \\out\\beauty0001.exr|<SUCCESS|"
          ">CurrentTask,1|>RenderTask,5|<STARTED|<FUNCTION: STDOUT: MaxCorvantis: Skipping frame \"x\"|<SUCCESS|"
          ">EndJob|<SUCCESS",
          recorder);
  EXPECT_EQ(result.status, JobStatus::done);
  EXPECT_EQ(result.pluginVersion, "May 27 2019 17:22:03 R");
  ASSERT_EQ(result.frames.size(), 2U);
  EXPECT_TRUE(result.frames[0].rendered && result.frames[1].rendered);
  EXPECT_TRUE(!result.frames[0].skipped && result.frames[1].skipped);
  EXPECT_EQ(result.frames[0].files, (std::vector<std::string>{"/local/beauty0001.exr", "/out/beauty0001.exr"}));
  EXPECT_EQ(result.frames[0].seconds, 0.5);
  EXPECT_EQ(recorder.seen, (std::vector<std::string>{
                               "job May 27 2019 17:22:03 R", "begin 0", "log MaxCorvantis: Render frame 1",
                               "title Rendering - 50.0%", "progress 50", "warning careful",
                               "warning The plug-in sent a notice that this worker does not know: FUNCTION: DANCE now",
                               "log MaxCorvantis: Writing to output file: \\local\\beauty0001.exr",
                               "log MaxCorvantis: Saved image to \\out\\beauty0001.exr", "end 0 ok", "begin 1",
                               "log MaxCorvantis: Skipping frame \"x\"", "end 1 ok"}));
}

// What came of the job, and after "|" of each frame.
std::string outcomeOf(const JobResult& result) {
  std::string text = result.status == JobStatus::done      ? "done"
                     : result.status == JobStatus::refused ? "refused"
                                                           : "lost";
  if (!result.message.empty()) text += ": " + result.message;
  for (const FrameResult& frame : result.frames) {
    text += "|" + std::to_string(frame.frame) + (frame.rendered ? " ok" : "");
    for (const std::string& error : frame.errors) text += ": " + error;
  }
  return text;
}

TEST(Session, EveryWayAJobCanGoWrong) {
  Job one;
  one.scene = "/scenes/a.gltf";
  one.frames = {1};
  Job three = one;
  three.frames = {1, 2, 3};
  Job careful = three;
  careful.stopOnError = true;
  Job scripted = one;
  scripted.preJobScripts = {"/s/pre.ms"};
  scripted.perFrameScripts = {"/s/frame.ms"};
  scripted.postJobScripts = {"/s/post.ms"};
  Job wordy = one;
  wordy.settings = {{"TempFolder", std::string(100000, 'x')}};
  const std::string greeted = ">TessarynStartup|<Corvantis x";
  const std::string asked = greeted + R"(|>StartJob,\\scenes\\a.gltf,|)";
  const std::string opened = asked + "<SUCCESS Scene loaded successfully|";
  const std::string begun = opened + ">CurrentTask,0|>RenderTask,1|";
  const struct {
    const Job& job;
    std::string steps, outcome;
  } cases[] = {
      {one, ">TessarynStartup|<Hello", "lost: Expected \"Corvantis \" and a version from the plug-in, got \"Hello\""},
      {one, ">TessarynStartup|!it died", "lost: it died"},
      {wordy, greeted, "refused: The command TempFolder is 100011 bytes long; a plug-in takes at most 100000"},
      {one, asked + "<ERROR: Invalid max file: \"a\"|<SUCCESS Scene loaded successfully",
       "refused: Invalid max file: \"a\""},
      {one, asked + "<ERROR: StartJob: Expected 2 parameters", "refused: StartJob: Expected 2 parameters"},
      {three,
       begun + "<STARTED|<ERROR: Failed to render the frame.|<ERROR: Failed to save file.|" +
           ">CurrentTask,1|>RenderTask,2|<ERROR: RenderTask: Not in a job.|" +
           ">CurrentTask,2|>RenderTask,3|<STARTED|<SUCCESS|>EndJob|<SUCCESS",
       "done|1: Failed to render the frame.|2: RenderTask: Not in a job.|3 ok"},
      {careful, begun + "<STARTED|<ERROR: Failed to save file.|>EndJob|<SUCCESS", "done|1: Failed to save file."},
      {one, begun + "<ERROR: FrameNumberBase: no", "refused: FrameNumberBase: no|1: FrameNumberBase: no"},
      {one, begun + "<STARTED|!it died", "lost: it died|1: it died"},
      {one, begun + "<STARTED|<DANCE",
       "lost: The plug-in sent a message that is not part of the protocol: DANCE"
       "|1: The plug-in sent a message that is not part of the protocol: DANCE"},
      {scripted,
       opened + R"(>ExecuteMaxScriptFile,\\s\\pre.ms,false,0,false|<STARTED|<SUCCESS|>CurrentTask,0|)" +
           R"(>ExecuteMaxScriptFile,\\s\\frame.ms,true,1,false|<STARTED|<SUCCESS|>RenderTask,1|<STARTED|<SUCCESS|)" +
           R"(>ExecuteMaxScriptFile,\\s\\post.ms,false,0,false|<STARTED|<ERROR: it broke)",
       "refused: Script /s/post.ms: it broke|1 ok"},
      {one, begun + "<STARTED|<SUCCESS|>EndJob|<ERROR: stuck|<SUCCESS", "refused: stuck|1 ok"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.steps);
    JobObserver observer;
    EXPECT_EQ(outcomeOf(run(c.job, c.steps, observer)), c.outcome);
  }
}

}  // namespace
}  // namespace worker
