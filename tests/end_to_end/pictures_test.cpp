// What the pictures show, measured in the files.
#include <gtest/gtest.h>

#include "programs.h"
#include "support/small_scene.h"
#include "support/temporary_folder.h"

namespace end_to_end {
namespace {

using standin::image::DecodedImage;

class Pictures : public testing::Test {
 protected:
  // Renders frame 1 with these settings and gives the image back.
  DecodedImage render(const std::string& scene, std::vector<std::string> settings, const std::string& name) {
    std::vector<std::string> arguments{
        "render",   folder_.write(name + ".gltf", scene), "--frames", "1", "--camera", "Camera01",
        "--output", folder_.path(name + ".exr")};
    for (const std::string& setting : settings) {
      arguments.push_back("--set");
      arguments.push_back(setting);
    }
    const Finished worker = run("tessaryn-worker", arguments, folder_.path());
    EXPECT_EQ(worker.exitCode, 0) << worker.output << worker.errors;
    return readImage(folder_.path(name + "0001.exr"));
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

TEST_F(Pictures, RenderingTwiceGivesTheSameImage) {
  const std::string scene = support::smallScene(R"("render":{"width":48,"height":36})");
  EXPECT_EQ(compare(render(scene, {}, "a"), render(scene, {"RestartRendererMode"}, "b")).largest, 0);
}

}  // namespace
}  // namespace end_to_end
