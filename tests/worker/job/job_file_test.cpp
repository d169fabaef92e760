#include "worker/job/job_file.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/temporary_folder.h"

namespace worker {
namespace {

TEST(JobFile, ReadsEveryField) {
  const support::TemporaryFolder folder;
  const std::string path = folder.write("jobs/job.json", R"({
    "scene": "../scene.gltf", "output": "out/a.exr", "jpeg": "/previews", "camera": "Cam", "frames": "1-3",
    "settings": ["RemovePadding", ["GammaCorrection", 2.2, 1], ["OverrideSaveFile", true]],
    "elementOutputs": ["out/z.exr"], "localFolder": "tmp",
    "preJobScripts": ["pre.ms"], "perFrameScripts": ["frame.ms"], "postJobScripts": ["post.ms"],
    "jobInfo": {"Name": "x", "Priority": 50}, "submitInfo": {"Files": ["a", "b"], "Pool": "all"},
    "auxFiles": ["aux.txt"], "pathMapping": [{"from": "Z:", "to": "/z"}],
    "stopOnError": true, "host": "my-host --flag", "timeout": 12.5})");
  const JobFile file = readJobFile(path);
  const Job& job = file.job;
  EXPECT_EQ(job.scene, folder.path("scene.gltf"));
  EXPECT_EQ(job.output, folder.path("jobs/out/a.exr"));
  EXPECT_EQ(job.jpegFolder, "/previews");
  EXPECT_EQ(job.localFolder, folder.path("jobs/tmp"));
  EXPECT_EQ(job.camera, "Cam");
  EXPECT_EQ(job.frames, (std::vector<std::int32_t>{1, 2, 3}));
  const std::vector<std::vector<std::string>> settings{{"RemovePadding"},
                                                       {"GammaCorrection", "2.2", "1"},
                                                       {"OverrideSaveFile", "1"},
                                                       {"OutputImageReFilename", "0", folder.path("jobs/out/z.exr")}};
  for (const auto& setting : settings)
    EXPECT_NE(std::find(job.settings.begin(), job.settings.end(), setting), job.settings.end()) << setting.front();
  EXPECT_EQ(job.settings.size(), settings.size());
  EXPECT_EQ(job.preJobScripts, std::vector<std::string>{folder.path("jobs/pre.ms")});
  EXPECT_EQ(job.perFrameScripts, std::vector<std::string>{folder.path("jobs/frame.ms")});
  EXPECT_EQ(job.postJobScripts, std::vector<std::string>{folder.path("jobs/post.ms")});
  EXPECT_EQ(job.jobInfo.at("Priority"), "50");
  EXPECT_EQ(job.submitInfo.at("Files"), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(job.submitInfo.at("Pool"), std::vector<std::string>{"all"});
  EXPECT_EQ(job.auxFiles, std::vector<std::string>{folder.path("jobs/aux.txt")});
  EXPECT_EQ(job.pathMappings.at(0).to, "/z");
  EXPECT_TRUE(job.stopOnError);
  EXPECT_EQ(file.host, "my-host --flag");
  EXPECT_EQ(file.timeout, 12.5);
}

TEST(JobFile, ErrorsNameTheField) {
  const support::TemporaryFolder folder;
  const struct {
    const char* json;
    const char* named;
  } cases[] = {
      {"{", "not valid JSON"},
      {"[]", "expected an object"},
      {R"({"frames": "1"})", "scene: a job needs one"},
      {R"({"scene": "a.gltf"})", "frames: a job needs some"},
      {R"({"scene": 3, "frames": "1"})", "scene: expected a text, got 3"},
      {R"({"scene": "a", "frames": "x"})", "frames: expected frames such as"},
      {R"({"scene": "a", "frames": "1", "sceen": 1})", "sceen: there is no such field"},
      {R"({"scene": "a", "frames": "1", "settings": [[]]})", "settings[0]: expected a command word"},
      {R"({"scene": "a", "frames": "1", "settings": ["A", ["B", {}]]})", "settings[1][1]: expected a text"},
      {R"({"scene": "a", "frames": "1", "submitInfo": {"K": ["a", 1]}})", "submitInfo.K[1]: expected a text"},
      {R"({"scene": "a", "frames": "1", "pathMapping": [{"form": "x"}]})",
       "pathMapping[0].form: there is no such field"},
      {R"({"scene": "a", "frames": "1", "timeout": 0})", "timeout: expected a number above 0"},
      {R"({"scene": "a", "frames": "1", "stopOnError": "yes"})", "stopOnError: expected true or false"},
  };
  for (const auto& c : cases) {
    const std::string path = folder.write("job.json", c.json);
    try {
      readJobFile(path);
      ADD_FAILURE() << c.json << " was accepted";
    } catch (const std::runtime_error& e) {
      EXPECT_NE(std::string(e.what()).find(c.named), std::string::npos) << c.json << ": " << e.what();
      EXPECT_EQ(std::string(e.what()).rfind(path, 0), 0U) << "the file is not named: " << e.what();
    }
  }
  EXPECT_THROW(readJobFile(folder.path("missing.json")), std::runtime_error);
}

}  // namespace
}  // namespace worker
