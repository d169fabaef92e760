// The example scene against pictures that somebody has looked at (golden/, 96 x 54 pixels, 4 samples).
//
// A pixel differs when one of its channels is off by more than 0.02 of (1 + its golden value); at most 1 % of the
// pixels may, since processors round differently at edges. After a wanted change of the pictures run the test with
// CORVANTIS_UPDATE_GOLDEN=1 and look at what changed.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "hostkit/codec/image_codec_library.h"
#include "programs.h"
#include "support/build_folders.h"
#include "support/temporary_folder.h"

namespace end_to_end {
namespace {

namespace fs = std::filesystem;
using hostkit::image::DecodedImage;

constexpr double kTolerance = 0.02;
constexpr double kLargestShare = 0.01;

const char* const kPictures[] = {"beauty", "depth", "normal", "albedo", "object_id", "direct_light", "emission"};

// Renders frame 7 of the example scene, small, all elements, into `folder`.
Finished renderExample(const support::TemporaryFolder& folder) {
  const std::string scene = support::sourceFolder() + "/examples/orrery.gltf";
  folder.write("small.ms", "renderWidth = 96\nrenderHeight = 54\nrenderers.current.samples = 4\ntrue\n");
  const std::string job = folder.write("job.json", R"({"scene":")" + scene + R"(","camera":"Camera01","frames":"7",
    "output":"beauty.exr","preJobScripts":["small.ms"],"settings":["RemovePadding"],
    "elementOutputs":["depth.exr","normal.exr","albedo.exr","object_id.exr","direct_light.exr","emission.exr"]})");
  return run("tessaryn-worker", {"run", job}, folder.path());
}

double shareOfDifferences(const DecodedImage& golden, const DecodedImage& image, DecodedImage& differences) {
  differences = golden;
  std::size_t count = 0;
  for (std::size_t pixel = 0; pixel < golden.pixels.size() / 4; ++pixel) {
    bool differs = false;
    for (std::size_t c = pixel * 4; c < pixel * 4 + 4; ++c) {
      const float d = std::abs(golden.pixels[c] - image.pixels[c]);
      differences.pixels[c] = d;
      differs = differs || !(d <= kTolerance * (1 + std::abs(golden.pixels[c])));
    }
    if (differs) ++count;
  }
  return static_cast<double>(count) / static_cast<double>(golden.pixels.size() / 4);
}

// Keeps the difference where whoever looks at the failure finds it.
std::string keep(const DecodedImage& differences, const std::string& name) {
  const fs::path folder = fs::path(support::programFolder()) / "../differences";
  fs::create_directories(folder);
  hostkit::image::ImageCodecLibrary codecs(support::programFolder() + "/libimage_codec.so");
  hostkit::image::EncodeRequest request;
  request.extension = "exr";
  request.width = differences.width;
  request.height = differences.height;
  request.pixels = differences.pixels.data();
  const auto bytes = codecs.encode(request);
  const std::string path = (folder / (name + ".exr")).lexically_normal().string();
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  return path;
}

TEST(GoldenPictures, TheExampleSceneLooksAsItDid) {
  const support::TemporaryFolder folder;
  const Finished worker = renderExample(folder);
  ASSERT_EQ(worker.exitCode, 0) << worker.output << worker.errors;
  const bool update = std::getenv("CORVANTIS_UPDATE_GOLDEN") != nullptr;
  for (const std::string name : kPictures) {
    SCOPED_TRACE(name);
    const std::string goldenPath = support::sourceFolder() + "/tests/end_to_end/golden/" + name + ".exr";
    if (update) {
      fs::copy_file(folder.path(name + ".exr"), goldenPath, fs::copy_options::overwrite_existing);
      continue;
    }
    const DecodedImage golden = readImage(goldenPath), image = readImage(folder.path(name + ".exr"));
    ASSERT_EQ(image.width, golden.width);
    ASSERT_EQ(image.height, golden.height);
    DecodedImage differences;
    const double share = shareOfDifferences(golden, image, differences);
    if (share > kLargestShare)
      ADD_FAILURE() << share * 100 << " % of the pixels differ; the difference is in " << keep(differences, name);
  }
}

}  // namespace
}  // namespace end_to_end
