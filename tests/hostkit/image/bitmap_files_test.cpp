#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "hostkit/image/bitmap_manager.h"
#include "hostkit/image/output_file.h"
#include "support/build_folders.h"
#include "support/temporary_folder.h"

namespace hostkit::image {
namespace {

using hostsdk::BitmapInfo;
using hostsdk::ColorFloat;

struct Release {
  void operator()(hostsdk::Bitmap* bitmap) const { bitmap->DeleteThis(); }
};
using BitmapOwner = std::unique_ptr<hostsdk::Bitmap, Release>;

// One module for all cases: loading it takes half a second.
ImageCodecLibrary& sharedCodecs() {
  static ImageCodecLibrary codecs(support::programFolder() + "/libimage_codec.so");
  return codecs;
}

class BitmapFiles : public testing::Test {
 protected:
  BitmapOwner make(int type, int width = 4, int height = 3) {
    BitmapInfo info = described("");
    info.SetWidth(static_cast<std::uint16_t>(width));
    info.SetHeight(static_cast<std::uint16_t>(height));
    info.SetType(type);
    return BitmapOwner(manager_.Create(info));
  }
  BitmapInfo described(const std::string& name) const {
    BitmapInfo info;
    info.SetWidth(4);
    info.SetHeight(3);
    info.SetFlags(hostsdk::kMapHasAlpha);
    if (!name.empty()) info.SetName(folder_.wide(name));
    return info;
  }
  static OutputResult save(hostsdk::Bitmap& bitmap, const BitmapInfo& info) {
    if (const auto opened = bitmap.OpenOutput(info)) return static_cast<OutputResult>(opened);
    const auto written = bitmap.Write(info, hostsdk::kSingleFrame);
    if (written == hostsdk::kBitmapSuccess) bitmap.Close(info, 0);
    return static_cast<OutputResult>(written);
  }
  std::size_t filesInFolder() const {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.path()))
      if (entry.is_regular_file()) ++count;
    return count;
  }

  support::TemporaryFolder folder_;
  hostkit::services::GammaManager gamma_;
  std::vector<std::string> log_;
  ImageBitmapManager manager_{sharedCodecs(), gamma_, "test",
                              [this](const std::string& line) { log_.push_back(line); }};
};

TEST_F(BitmapFiles, EveryFormatHoldsWhatItPromises) {
  // A half-covered orange pixel, premultiplied.
  const ColorFloat pixel{0.4F, 0.2F, 0.1F, 0.5F};
  const auto encoded = [](float value) { return std::pow(value, 1.0F / 2.2F); };
  const struct {
    const char* name;
    int type;
    const char* holds;
    int channels;
    float red;  // as the file holds it
    float tolerance;
  } cases[] = {
      {"a.exr", hostsdk::kBitmapRealPixFloat32, "float", 4, 0.4F, 0},
      {"b.EXR", hostsdk::kBitmapTrueColor64, "half", 4, 0.4F, 5e-4F},
      {"c.tif", hostsdk::kBitmapRealPixFloat32, "float", 4, 0.4F, 0},
      {"d.tiff", hostsdk::kBitmapTrueColor64, "uint16", 4, 0.4F, 2e-5F},
      {"e.png", hostsdk::kBitmapRealPixFloat32, "uint8", 4, encoded(0.8F), 0.003F},
      {"f.tga", hostsdk::kBitmapTrueColor64, "uint8", 4, encoded(0.8F), 0.003F},
      {"g.jpg", hostsdk::kBitmapRealPixFloat32, "uint8", 3, encoded(0.4F), 0.02F},
      {"h.jpeg", hostsdk::kBitmapTrueColor64, "uint8", 3, encoded(0.4F), 0.02F},
      {"i.bmp", hostsdk::kBitmapRealPixFloat32, "uint8", 3, encoded(0.4F), 0.003F},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const BitmapOwner bitmap = make(c.type, 16, 8);
    for (int y = 0; y < 8; ++y)
      for (int x = 0; x < 16; ++x) bitmap->Storage()->PutLinearPixels(x, y, 1, &pixel);
    ASSERT_EQ(save(*bitmap, described(c.name)), OutputResult::success) << testing::PrintToString(log_);
    const DecodedImage image = sharedCodecs().decode(folder_.path(c.name));
    EXPECT_EQ(image.width, 16);
    EXPECT_EQ(image.height, 8);
    EXPECT_EQ(image.sampleType, c.holds);
    EXPECT_EQ(image.channels, c.channels);
    EXPECT_NEAR(image.pixels[(5 * 16 + 7) * 4], c.red, c.tolerance + 1e-6F);
    if (c.channels == 4) {
      EXPECT_NEAR(image.pixels[3], 0.5F, 0.003F);
    }
  }
  EXPECT_EQ(filesInFolder(), std::size(cases)) << "nothing else is left beside the images";
  for (const ImageExtension& known : kImageExtensions)
    EXPECT_TRUE(
        std::any_of(std::begin(cases), std::end(cases),
                    [&](const auto& c) { return std::string(c.name).ends_with("." + std::string(known.extension)); }))
        << known.extension << " has no case";
}

TEST_F(BitmapFiles, GammaChangesOnlyEightBitFiles) {
  const ColorFloat grey{0.5F, 0.5F, 0.5F, 1.0F};
  const auto redOf = [&](const char* name) {
    const BitmapOwner bitmap = make(hostsdk::kBitmapRealPixFloat32);
    for (int y = 0; y < 3; ++y)
      for (int x = 0; x < 4; ++x) bitmap->Storage()->PutLinearPixels(x, y, 1, &grey);
    EXPECT_EQ(save(*bitmap, described(name)), OutputResult::success);
    return sharedCodecs().decode(folder_.path(name)).pixels[0];
  };
  gamma_.SetFileOutGamma(1.8F);
  EXPECT_NEAR(redOf("a.png"), std::pow(0.5F, 1 / 1.8F), 0.003F);
  EXPECT_EQ(redOf("a.exr"), 0.5F);
  gamma_.Enable(0);
  EXPECT_NEAR(redOf("b.png"), 0.5F, 0.003F);
  gamma_.Enable(1);
  gamma_.SetFileOutGamma(0);
  EXPECT_NEAR(redOf("c.png"), 0.5F, 0.003F) << "a gamma that is no positive number changes nothing";
}

TEST_F(BitmapFiles, AnImageWithoutTheAlphaFlagHasThreeChannels) {
  const BitmapOwner bitmap = make(hostsdk::kBitmapRealPixFloat32);
  BitmapInfo info;
  info.SetName(folder_.wide("a.exr"));
  ASSERT_EQ(save(*bitmap, info), OutputResult::success);
  EXPECT_EQ(sharedCodecs().decode(folder_.path("a.exr")).channels, 3);
}

TEST_F(BitmapFiles, FailuresAreNumberedAndLeaveNothingBehind) {
  std::filesystem::create_directory(folder_.path("folder.exr"));
  const BitmapOwner bitmap = make(hostsdk::kBitmapRealPixFloat32);
  const struct {
    const char* name;
    OutputResult result;
  } cases[] = {
      {"", OutputResult::noName},
      {"picture", OutputResult::unknownFormat},
      {"picture.webm", OutputResult::unknownFormat},
      {"missing/picture.exr", OutputResult::cannotOpen},
      {"folder.exr", OutputResult::cannotOpen},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(save(*bitmap, described(c.name)), c.result) << c.name;
    EXPECT_EQ(log_.size(), 1U) << c.name;
    log_.clear();
  }
  EXPECT_EQ(bitmap->Write(described("a.exr"), hostsdk::kSingleFrame),
            static_cast<std::uint16_t>(OutputResult::notOpen));
  EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(BitmapFiles, AnOutputThatIsNeverWrittenLeavesTheOldFileAlone) {
  folder_.write("a.exr", "old");
  {
    const BitmapOwner bitmap = make(hostsdk::kBitmapRealPixFloat32);
    ASSERT_EQ(bitmap->OpenOutput(described("a.exr")), hostsdk::kBitmapSuccess);
  }
  EXPECT_EQ(folder_.read("a.exr"), "old");
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(BitmapFiles, WhatAKilledProcessLeftGoesWithTheNextFileInItsFolder) {
  const pid_t killed = ::fork();
  if (killed == 0) {
    const OutputFile left(folder_.path("a0001.exr"));
    std::raise(SIGKILL);
  }
  ::waitpid(killed, nullptr, 0);
  ASSERT_EQ(filesInFolder(), 1U);
  folder_.write(".a0001.exr.99999999-1-12345678.part", "another machine's, of today");
  folder_.write(".a0001.exr.99999999-1-87654321.part", "another machine's, long ago");
  using std::filesystem::file_time_type;
  std::filesystem::last_write_time(folder_.path(".a0001.exr.99999999-1-87654321.part"),
                                   file_time_type::clock::now() - std::chrono::hours(25));
  folder_.write(".notes.part", "somebody's");
  {
    const OutputFile first(folder_.path("a0002.exr")), second(folder_.path("a0002.exr"));
    const OutputFile longest(folder_.path(std::string(251, 'n') + ".exr"));
    EXPECT_EQ(filesInFolder(), 5U) << "three of its own, of different names, and two of others";
  }
  EXPECT_TRUE(folder_.exists(".a0001.exr.99999999-1-12345678.part") && folder_.exists(".notes.part"));
}

// Files of this process may not grow beyond a few bytes while one lives: what a full disk looks like to a writer.
class FullDisk {
 public:
  FullDisk() {
    getrlimit(RLIMIT_FSIZE, &before_);
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{64, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int) = nullptr;
};

TEST_F(BitmapFiles, AFullDiskIsAnErrorForEveryFormatAndKeepsTheOldFile) {
  for (const ImageExtension& known : kImageExtensions) {
    const std::string name = "a." + std::string(known.extension);
    SCOPED_TRACE(name);
    folder_.write(name, "old");
    const std::size_t before = filesInFolder();
    const BitmapOwner bitmap = make(hostsdk::kBitmapRealPixFloat32, 200, 200);
    OutputResult result;
    {
      const FullDisk full;
      result = save(*bitmap, described(name));
    }
    EXPECT_EQ(result, OutputResult::cannotWrite);
    EXPECT_EQ(folder_.read(name), "old");
    EXPECT_EQ(filesInFolder(), before);
  }
}

TEST_F(BitmapFiles, BitmapsThatCannotBeAreNone) {
  EXPECT_EQ(make(hostsdk::kBitmapRealPixFloat32, 0, 3), nullptr);
  EXPECT_EQ(make(hostsdk::kBitmapRealPixFloat32, 3, 0), nullptr);
  EXPECT_EQ(make(hostsdk::kBitmapRealPixFloat32, 65535, 65535), nullptr) << "64 GiB";
  EXPECT_EQ(make(3), nullptr);
  EXPECT_EQ(manager_.liveBitmaps(), 0);
}

TEST(ImageCodecLibrary, AMissingModuleIsAnErrorOfTheImageNotOfTheHost) {
  ImageCodecLibrary codecs("/nowhere/libmissing.so");
  hostkit::services::GammaManager gamma;
  std::vector<std::string> log;
  support::TemporaryFolder folder;
  ImageBitmapManager manager(codecs, gamma, "test", [&](const std::string& line) { log.push_back(line); });
  BitmapInfo info;
  info.SetWidth(2);
  info.SetHeight(2);
  info.SetName(folder.wide("a.png"));
  const BitmapOwner bitmap(manager.Create(info));
  ASSERT_EQ(bitmap->OpenOutput(info), hostsdk::kBitmapSuccess);
  EXPECT_EQ(bitmap->Write(info, hostsdk::kSingleFrame), static_cast<std::uint16_t>(OutputResult::cannotEncode));
  ASSERT_EQ(log.size(), 1U);
  EXPECT_NE(log[0].find("The image module cannot be loaded"), std::string::npos) << log[0];
}

}  // namespace
}  // namespace hostkit::image
