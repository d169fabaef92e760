// What the pictures show, measured in the files.
#include <gtest/gtest.h>

#include "programs.h"
#include "support/small_scene.h"
#include "support/temporary_folder.h"

namespace end_to_end {
namespace {

using hostkit::image::DecodedImage;

class Pictures : public testing::Test {
 protected:
  // Renders frame 1 with these settings and gives the image back.
  DecodedImage render(const std::string& scene, const std::vector<std::string>& settings, const std::string& name) {
    renderFrames(scene, "1", settings, name);
    return frame(name, 1);
  }
  DecodedImage frame(const std::string& name, int number) {
    std::string digits = std::to_string(number);
    return readImage(folder_.path(name + std::string(4 - digits.size(), '0') + digits + ".exr"));
  }
  void renderFrames(const std::string& scene, const std::string& frames, const std::vector<std::string>& settings,
                    const std::string& name) {
    std::vector<std::string> arguments{
        "render",   folder_.write(name + ".gltf", scene), "--frames", frames, "--camera", "Camera01",
        "--output", folder_.path(name + ".exr")};
    for (const std::string& setting : settings) {
      arguments.push_back("--set");
      arguments.push_back(setting);
    }
    const Finished worker = run("tessaryn-worker", arguments, folder_.path());
    EXPECT_EQ(worker.exitCode, 0) << worker.output << worker.errors;
  }
  support::TemporaryFolder folder_;
};

TEST_F(Pictures, ARegionShowsTheSamePixelsAsTheFullFrame) {
  const std::string scene = support::smallScene(R"("render":{"width":64,"height":48,"samples":4})");
  const DecodedImage full = render(scene, {}, "full");
  const struct {
    const char* name;
    const char* setting;
    int left, top, width, height;
  } cases[] = {
      {"crop", "RegionRendering,0,10,12,50,40,CROP", 10, 12, 40, 28},
      {"padded", "RegionRendering,5,10,12,50,40,CROP", 10, 12, 40, 28},
      {"corner", "RegionRendering,10,0,0,30,20,CROP", 0, 0, 30, 20},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const DecodedImage part = render(scene, {c.setting}, c.name);
    ASSERT_EQ(part.width, c.width);
    ASSERT_EQ(part.height, c.height);
    for (int y = 0; y < c.height; ++y)
      for (int x = 0; x < c.width * 4; ++x)
        ASSERT_EQ(part.pixels[static_cast<std::size_t>(y * c.width * 4 + x)],
                  full.pixels[static_cast<std::size_t>(((y + c.top) * 64 + c.left) * 4 + x)])
            << x / 4 << "," << y;
  }
  const DecodedImage blown = render(scene, {"RegionRendering,0,16,12,48,36,BLOWUP"}, "blown");
  EXPECT_EQ(blown.width, 64);
  EXPECT_EQ(blown.height, 48);
  const DecodedImage whole = render(scene, {"RegionRendering,10,0,0,30,20,NOCROP"}, "nocrop");
  EXPECT_EQ(whole.width, 54);
  EXPECT_EQ(whole.height, 38);
}

TEST_F(Pictures, PassesAccumulateToWhatManySamplesShow) {
  const auto scene = [](const std::string& multipass, int samples) {
    return support::smallScene(R"("render":{"width":48,"height":36,"samples":)" + std::to_string(samples) + "}",
                               multipass);
  };
  // In focus, an image of four passes of four samples is one of sixteen samples but for noise.
  const DecodedImage reference = render(scene("", 64), {}, "reference");
  const DecodedImage passes = render(
      scene(R"("multipass":{"effect":"depthOfField","passes":16,"focusDistance":5,"aperture":0.2})", 4), {}, "passes");
  EXPECT_LT(compare(reference, passes).rms, 0.02);
  const DecodedImage blurred = render(
      scene(R"("multipass":{"effect":"depthOfField","passes":16,"focusDistance":2,"aperture":0.2})", 4), {}, "blurred");
  EXPECT_GT(compare(reference, blurred).rms, 2 * compare(reference, passes).rms) << "what is out of focus is blurred";
  const DecodedImage single =
      render(scene(R"("multipass":{"effect":"depthOfField","passes":16,"focusDistance":2,"aperture":0.2})", 64),
             {"DisableMultipass"}, "single");
  EXPECT_LT(compare(reference, single).rms, 1e-6);
}

// The small scene with its quad on the way from left to right, two units a frame at 30 frames a second.
std::string movingScene(const std::string& settings, const std::string& cameraSettings) {
  std::string scene = support::smallScene(settings, cameraSettings);
  const auto insert = [&](const std::string& before, const std::string& text) {
    scene.insert(scene.find(before), text);
  };
  insert(R"("cameras":[)", R"("animations":[{"samplers":[{"input":2,"output":3,"interpolation":"LINEAR"}],
    "channels":[{"sampler":0,"target":{"node":0,"path":"translation"}}]}],)");
  insert(R"(],
    "bufferViews")",
         R"(,
      {"bufferView":2,"componentType":5126,"count":2,"type":"SCALAR","min":[0],"max":[0.0666667]},
      {"bufferView":3,"componentType":5126,"count":2,"type":"VEC3"})");
  insert(R"(],
    "buffers")",
         R"(,{"buffer":1,"byteOffset":0,"byteLength":8},{"buffer":1,"byteOffset":8,"byteLength":24})");
  const std::string moments = R"(,{"byteLength":32,"uri":"data:application/octet-stream;base64,)"
                              R"(AAAAAImIiD0AAADAAAAAAAAAAAAAAABAAAAAAAAAAAA="})";
  scene.insert(scene.rfind("]}"), moments);
  return scene;
}

TEST_F(Pictures, MotionBlurIsTheMeanOfTheMomentsThatItSpans) {
  const auto scene = [](int frameRate, int samples, const std::string& multipass) {
    return movingScene(R"("frameRate":)" + std::to_string(frameRate) +
                           R"(,"render":{"width":48,"height":36,"samples":)" + std::to_string(samples) + "}",
                       multipass);
  };
  const DecodedImage blurred =
      render(scene(30, 16, R"("multipass":{"effect":"motionBlur","passes":8,"duration":0.5})"), {}, "blurred");
  // Frame 1 is tick 160, and the eight passes lie 10 ticks apart around it. At 960 frames a second a frame is 5 ticks.
  renderFrames(scene(960, 64, ""), "25-39x2", {}, "moment");
  DecodedImage mean = frame("moment", 25);
  for (float& value : mean.pixels) value /= 8;
  for (int number = 27; number <= 39; number += 2) {
    const DecodedImage moment = frame("moment", number);
    for (std::size_t i = 0; i < mean.pixels.size(); ++i) mean.pixels[i] += moment.pixels[i] / 8;
  }
  EXPECT_LT(compare(mean, blurred).rms, 0.01);
  const DecodedImage sharp =
      render(scene(30, 16, R"("multipass":{"effect":"motionBlur","passes":8,"duration":0})"), {}, "sharp");
  EXPECT_GT(compare(mean, sharp).rms, 0.05) << "what moves is blurred";
}

TEST_F(Pictures, RenderingTwiceGivesTheSameImage) {
  const std::string scene = support::smallScene(R"("render":{"width":48,"height":36})");
  EXPECT_EQ(compare(render(scene, {}, "a"), render(scene, {"RestartRendererMode"}, "b")).largest, 0);
}

}  // namespace
}  // namespace end_to_end
