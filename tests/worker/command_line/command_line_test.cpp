// What arguments ask for, without a program that does it.
#include "worker/command_line/command_line.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "support/temporary_folder.h"

namespace worker {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Texts = std::vector<std::string>;

class CommandLine : public testing::Test {
 protected:
  Request read(const Texts& arguments) const { return std::get<Request>(readCommandLine(arguments)); }
  // `render` of the scene and frame 1, and what follows.
  Request render(Texts options) const {
    options.insert(options.begin(), {"render", scene_, "-f1"});
    return read(options);
  }
  // `run` of a job file with `fields` beside scene and frame.
  Request run(const std::string& fields, Texts options = {}) const {
    const std::string file = folder_.write("jobs/job.json", R"({"scene": "a.gltf", "frames": "7")" + fields + "}");
    options.insert(options.begin(), {"run", file});
    return read(options);
  }

  const support::TemporaryFolder folder_;
  const std::string scene_ = folder_.write("scene.gltf", "{}");
  const std::string script_ = folder_.write("script.ms", "true");
};

TEST_F(CommandLine, EveryOptionOfRenderArrives) {
  const Request request = read({"render",
                                scene_,
                                "--frames",
                                "1-2,5",
                                "--output",
                                "/out/../a.exr",
                                "--camera",
                                "Cam 1",
                                "--jpeg",
                                "/jpg",
                                "--local",
                                "/tmp/local",
                                "--set",
                                "RemovePadding",
                                "--set",
                                "IgnoreRenderElementsByName,\"Z, depth\",\"\"",
                                "--set",
                                "TempFolder,C:\\temp\\x",
                                "--pre-job",
                                script_,
                                "--per-frame",
                                script_,
                                script_,
                                "--post-job",
                                script_,
                                "--map",
                                "Z:=/mnt/z",
                                "--map",
                                "Y:=",
                                "--stop-on-error",
                                "--host",
                                "  host  --a 'b c' \"d e\" f\\ g ",
                                "--timeout",
                                "1.5",
                                "--crash-report",
                                "/crashes",
                                "--verbose",
                                "--quiet",
                                "--plain"});
  const Job& job = request.job;
  EXPECT_EQ(job.scene, scene_);
  EXPECT_THAT(job.frames, ElementsAre(1, 2, 5));
  EXPECT_EQ(job.output, "/a.exr");
  EXPECT_EQ(job.camera, "Cam 1");
  EXPECT_EQ(job.jpegFolder, "/jpg");
  EXPECT_EQ(job.localFolder, "/tmp/local");
  EXPECT_THAT(job.settings, ElementsAre(Texts{"RemovePadding"}, Texts{"IgnoreRenderElementsByName", "Z, depth", ""},
                                        Texts{"TempFolder", "C:\\temp\\x"}));
  EXPECT_THAT(job.preJobScripts, ElementsAre(script_));
  EXPECT_THAT(job.perFrameScripts, ElementsAre(script_, script_));
  EXPECT_THAT(job.postJobScripts, ElementsAre(script_));
  ASSERT_EQ(job.pathMappings.size(), 2U);
  EXPECT_EQ(job.pathMappings[0].from + " " + job.pathMappings[0].to, "Z: /mnt/z");
  EXPECT_EQ(job.pathMappings[1].to, "");
  EXPECT_TRUE(job.stopOnError);
  EXPECT_THAT(request.host, ElementsAre("host", "--a", "b c", "d e", "f g"));
  EXPECT_EQ(request.silence, std::chrono::milliseconds(1500));
  EXPECT_EQ(request.crashReportFolder, "/crashes");
  EXPECT_TRUE(request.verbose && request.quiet && request.plain);
}

TEST_F(CommandLine, WhatIsNotGivenIsLeftToTheSceneAndTheProgram) {
  const Request request = render({});
  const Job& job = request.job;
  EXPECT_EQ(job.output + job.camera + job.jpegFolder + job.localFolder, "");
  EXPECT_TRUE(job.settings.empty() && job.preJobScripts.empty() && job.pathMappings.empty());
  EXPECT_TRUE(request.host.empty());
  EXPECT_EQ(request.silence, std::chrono::seconds(300));
  EXPECT_EQ(request.crashReportFolder, "");
  EXPECT_FALSE(job.stopOnError || request.verbose || request.quiet || request.plain);
  EXPECT_EQ(render({"-o", "a.exr"}).job.output, std::filesystem::current_path() / "a.exr");
}

TEST_F(CommandLine, OptionsWinOverTheJobFile) {
  const std::string both = R"(, "host": "file-host -x", "timeout": 20)";
  EXPECT_EQ(run("").job.scene, folder_.path("jobs/a.gltf"));
  EXPECT_TRUE(run("").host.empty());
  EXPECT_EQ(run("").silence, std::chrono::seconds(300));
  EXPECT_THAT(run(both).host, ElementsAre("file-host", "-x"));
  EXPECT_EQ(run(both).silence, std::chrono::seconds(20));
  EXPECT_THAT(run(both, {"--host", "my-host"}).host, ElementsAre("my-host"));
  EXPECT_EQ(run(both, {"--timeout", "300"}).silence, std::chrono::seconds(300));
  EXPECT_EQ(run(R"(, "timeout": 1e300)").silence, std::chrono::seconds(1000000000));
}

TEST_F(CommandLine, HelpNamesTheOptionsAndExitCodes) {
  const struct {
    Texts arguments;
    const char* named;
  } cases[] = {
      {{"--help"}, "130 interrupted"},
      {{"render", "--help"}, "--stop-on-error"},
      {{"render", "-h"}, "=300"},
      {{"run", "--help"}, "--crash-report"},
  };
  for (const auto& c : cases) EXPECT_THAT(std::get<Help>(readCommandLine(c.arguments)).text, HasSubstr(c.named));
}

TEST_F(CommandLine, WrongUsageIsNamed) {
  const std::string gone = folder_.path("gone");
  const struct {
    Texts arguments;
    const char* named;
  } cases[] = {
      {{}, "subcommand is required"},
      {{"dance"}, "subcommand is required"},
      {{"render"}, "scene is required"},
      {{"render", scene_}, "--frames is required"},
      {{"render", gone, "-f1"}, "gone"},
      {{"render", scene_, "-f1", "--pre-job", gone}, "gone"},
      {{"render", scene_, "-f1", "--per-frame", gone}, "gone"},
      {{"render", scene_, "-f1", "--post-job", gone}, "gone"},
      {{"render", scene_, "-f1", "--timeout", "0"}, "--timeout"},
      {{"render", scene_, "-f1", "--timeout", "soon"}, "--timeout"},
      {{"render", scene_, "-f1", "--fast"}, "--fast"},
      {{"run"}, "job is required"},
      {{"run", gone}, "gone"},
      {{"run", scene_, "--frames", "1"}, "--frames"},
  };
  for (const auto& c : cases) {
    try {
      readCommandLine(c.arguments);
      ADD_FAILURE() << testing::PrintToString(c.arguments) << " was accepted";
    } catch (const WrongUsage& e) {
      EXPECT_THAT(e.what(), HasSubstr(c.named));
      EXPECT_THAT(e.what(), HasSubstr("--help"));
    }
  }
}

TEST_F(CommandLine, TextsThatCannotBeReadAreNamed) {
  const struct {
    Texts arguments;
    const char* named;
  } cases[] = {
      {{"render", scene_, "-f1-x"}, "frames: expected frames such as 1-24,30,40-50x2, got \"1-x\""},
      {{"render", scene_, "-f1", "--map", "Z:"}, "--map: expected FROM=TO, got \"Z:\""},
      {{"render", scene_, "-f1", "--map", "=/z"}, "--map: expected FROM=TO, got \"=/z\""},
      {{"render", scene_, "-f1", "--host", "  "}, "--host: expected a command, got nothing"},
      {{"run", scene_}, "scene: a job needs one"},
  };
  for (const auto& c : cases)
    EXPECT_THAT([&] { readCommandLine(c.arguments); }, testing::ThrowsMessage<std::exception>(HasSubstr(c.named)));
}

}  // namespace
}  // namespace worker
