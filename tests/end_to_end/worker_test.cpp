// Jobs from the worker's command line to the files on disk.
#include <gtest/gtest.h>

#include <filesystem>

#include "programs.h"
#include "support/small_scene.h"
#include "support/temporary_folder.h"

namespace end_to_end {
namespace {

class WorkerTest : public testing::Test {
 protected:
  void SetUp() override {
    scene_ =
        folder_.write("scene.gltf", support::smallScene(R"("frameRate":24,"render":{"width":48,"height":32,"samples":4},
      "elements":[{"name":"Z","type":"depth","output":"out/z.exr"},{"name":"N","type":"normal","output":"out/n.exr"}])"));
  }
  Finished render(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"render", scene_});
    return run("tessaryn-worker", arguments, folder_.path());
  }
  Finished runJob(const std::string& json) {
    return run("tessaryn-worker", {"run", folder_.write("job.json", json)}, folder_.path());
  }
  support::TemporaryFolder folder_;
  std::string scene_;
};

TEST_F(WorkerTest, RendersFramesWithPreviewsAndElements) {
  const Finished worker = render({"--frames", "1-2,5", "--output", folder_.path("img/beauty.exr"), "--jpeg",
                                  folder_.path("jpg"), "--camera", "Camera01"});
  ASSERT_EQ(worker.exitCode, 0) << worker.output << worker.errors;
  for (const char* frame : {"0001", "0002", "0005"}) {
    const std::string number = frame;
    const auto image = readImage(folder_.path("img/beauty" + number + ".exr"));
    EXPECT_EQ(image.width, 48);
    EXPECT_EQ(image.height, 32);
    EXPECT_EQ(image.sampleType, "float");
    EXPECT_EQ(readImage(folder_.path("jpg/beauty" + number + ".jpg")).sampleType, "uint8");
    EXPECT_NEAR(readImage(folder_.path("out/z" + number + ".exr")).pixels[(16 * 48 + 24) * 4], 5.0F, 1e-3F);
    EXPECT_NEAR(readImage(folder_.path("out/n" + number + ".exr")).pixels[(16 * 48 + 24) * 4 + 2], 1.0F, 1e-3F);
    EXPECT_NE(worker.output.find(folder_.path("img/beauty" + number + ".exr")), std::string::npos)
        << "not in the table";
  }
  EXPECT_NE(worker.output.find("3 of 3 frames rendered"), std::string::npos) << worker.output;
  EXPECT_EQ(worker.output.find('\033'), std::string::npos) << "no colours where there is no terminal";
  const std::string log = folder_.read("img/beauty.job/hosts/1/corvantis.log");
  EXPECT_NE(log.find("Got command: RenderTask,5"), std::string::npos);
}

TEST_F(WorkerTest, SaysWhyAJobOrAFrameFailed) {
  folder_.write("broken.gltf", R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[3]}]})");
  folder_.write("file", "in the way");
  const std::string output = folder_.path("a.exr");
  const struct {
    const char* name;
    std::vector<std::string> arguments;
    int exitCode;
    const char* named;
  } cases[] = {
      {"no such camera",
       {scene_, "--frames", "1", "--camera", "Nobody"},
       4,
       "Scene does not contain render camera \"Nobody\""},
      {"camera is no camera",
       {scene_, "--frames", "1", "--camera", "Quad"},
       1,
       "Camera node Quad is not a camera node"},
      {"broken scene", {folder_.path("broken.gltf"), "--frames", "1"}, 4, "Failed to load max file"},
      {"not a scene", {folder_.path("file"), "--frames", "1"}, 4, "Invalid max file"},
      {"bad setting",
       {scene_, "--frames", "1", "--set", "FrameNumberBase,x"},
       4,
       "is not a valid value for frame number base"},
      {"unwritable",
       {scene_, "--frames", "1", "--output", folder_.path("file/a.exr")},
       1,
       "Error in bm->OpenOutput(): error code 3"},
      {"unknown format",
       {scene_, "--frames", "1", "--output", folder_.path("a.webm")},
       1,
       "Error in bm->OpenOutput(): error code 2"},
      {"black",
       {scene_, "--frames", "1", "--output", output, "--set", "FailOnBlackFrames,1,1"},
       1,
       "of the output image is black"},
      {"bad frames", {scene_, "--frames", "1-x"}, 2, "1-x"},
      {"missing scene", {folder_.path("missing.gltf"), "--frames", "1"}, 2, "missing.gltf"},
      {"dead host", {scene_, "--frames", "1", "--host", "/bin/sh -c 'echo no licence; exit 3'"}, 3, "no licence"},
      {"missing host", {scene_, "--frames", "1", "--host", "no-such-host"}, 3, "no-such-host"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<std::string> arguments = c.arguments;
    arguments.insert(arguments.begin(), "render");
    const Finished worker = run("tessaryn-worker", arguments, folder_.path());
    EXPECT_EQ(worker.exitCode, c.exitCode) << worker.output << worker.errors;
    EXPECT_NE((worker.output + worker.errors).find(c.named), std::string::npos) << worker.output << worker.errors;
    EXPECT_EQ(worker.output.find("did not end properly"), std::string::npos) << "only after a job that went well";
  }
}

TEST_F(WorkerTest, AFailedFrameDoesNotStopTheOthers) {
  // Frame 2's file name is taken by a folder.
  std::filesystem::create_directories(folder_.path("img/a0002.exr"));
  const Finished worker = render({"--frames", "1-3", "--output", folder_.path("img/a.exr")});
  EXPECT_EQ(worker.exitCode, 1);
  EXPECT_NE(worker.output.find("Frame 2: Error in bm->OpenOutput(): error code 3"), std::string::npos) << worker.output;
  EXPECT_NE(worker.output.find("2 of 3 frames rendered"), std::string::npos) << worker.output;
  EXPECT_TRUE(folder_.exists("img/a0001.exr") && folder_.exists("img/a0003.exr"));
  const Finished stopped = render({"--frames", "2-3", "--output", folder_.path("img/a.exr"), "--stop-on-error"});
  EXPECT_NE(stopped.output.find("0 of 2 frames rendered"), std::string::npos) << stopped.output;
}

TEST_F(WorkerTest, RunsScriptsThatTalkBack) {
  folder_.write("pre.ms", R"(
    TessarynUtil.LogMessage ("job " + (TessarynUtil.GetJobInfoEntry "Name"))
    TessarynUtil.WarnMessage ("count " + ((TessarynUtil.GetSubmitInfoEntryElementCount "Files") as string))
    TessarynUtil.LogMessage (TessarynUtil.GetSubmitInfoEntryElement 1 "Files")
    TessarynUtil.LogMessage (TessarynUtil.GetPathMappedFilename "Z:\\wood.png")
    TessarynUtil.LogMessage TessarynUtil.SceneFileName
    (TessarynUtil.GetJobInfoEntry "Unknown") == undefined
  )");
  folder_.write(
      "frame.ms",
      R"(TessarynUtil.LogMessage ("at frame " + (TessarynUtil.CurrentFrame as string)); $Sun.multiplier = 0; true)");
  folder_.write("post.ms", R"(TessarynUtil.LogMessage ("wrote " + (TessarynUtil.GetOutputFilename 0)); true)");
  const Finished worker =
      run("tessaryn-worker",
          {"run", "--verbose", folder_.write("job.json", R"({"scene":"scene.gltf","frames":"4","output":"o/a.exr",
      "jobInfo":{"Name":"orrery"},"submitInfo":{"Files":["x","y z"]},"pathMapping":[{"from":"Z:","to":"/mnt"}],
      "preJobScripts":["pre.ms"],"perFrameScripts":["frame.ms"],"postJobScripts":["post.ms"]})")},
          folder_.path());
  ASSERT_EQ(worker.exitCode, 0) << worker.output << worker.errors;
  for (const char* line :
       {"job orrery", "Warning: count 2", "y z", "/mnt\\wood.png", "scene.gltf", "at frame 4", "wrote "})
    EXPECT_NE(worker.output.find(line), std::string::npos) << line << "\n" << worker.output;
}

TEST_F(WorkerTest, LocalRenderingLeavesNothingBehind) {
  const Finished worker =
      runJob(R"({"scene":"scene.gltf","frames":"1","output":"o/a.exr","elementOutputs":["o/b.exr","o/c.exr"],
    "localFolder":"tmp","settings":[["IgnoreRenderElementsByName","N"]]})");
  ASSERT_EQ(worker.exitCode, 0) << worker.output << worker.errors;
  EXPECT_TRUE(folder_.exists("o/a0001.exr") && folder_.exists("o/b0001.exr"));
  EXPECT_FALSE(folder_.exists("o/c0001.exr"));
  EXPECT_TRUE(!folder_.exists("tmp") || std::filesystem::is_empty(folder_.path("tmp")));
}

}  // namespace
}  // namespace end_to_end
