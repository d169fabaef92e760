#include "plugin/render/region_output.h"

#include "frame_fixture.h"

namespace corvantis {
namespace {

using support::answering;
using support::onCall;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::int32_t kNoCrop = 1;
constexpr std::int32_t kCropOrBlowUp = 4;

struct Overs {
  std::int32_t left = 0, top = 0, right = 0, bottom = 0;
};

struct RegionCase {
  const char* name;
  std::int32_t type;
  int outputWidth, outputHeight;
  hostsdk::Rect region;  // padding included
  std::int32_t padding;
  Overs overs;
  std::string rendered, saved;  // sizes
  int cutX, cutY;               // where in the rendered image the saved one starts
};

class Region : public support::FrameFixture, public testing::WithParamInterface<RegionCase> {};

// A pixel tells where it is.
hostsdk::ColorFloat colorAt(int x, int y) {
  return {static_cast<float>(x + 1) / 4096.0F, static_cast<float>(y + 1) / 4096.0F, 0.5F, 1.0F};
}

TEST_P(Region, IsRenderedWithItsPaddingAndSavedWithoutIt) {
  const RegionCase& expected = GetParam();
  host.core.renderWidth = expected.outputWidth;
  host.core.renderHeight = expected.outputHeight;
  host.core.color = [](int x, int y, hostsdk::TimeValue) { return colorAt(x, y); };
  addElement(u"P", at("p.exr")).color = colorAt;
  useRegion(expected.type, expected.region);
  job.settings.regionPadding = expected.padding;
  job.settings.regionLeftOver = expected.overs.left;
  job.settings.regionTopOver = expected.overs.top;
  job.settings.regionRightOver = expected.overs.right;
  job.settings.regionBottomOver = expected.overs.bottom;

  ASSERT_EQ(render(5), "");

  const hostsdk::Rect& r = expected.region;
  const std::string rectangle = std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) +
                                "," + std::to_string(r.bottom);
  const std::string openSize = std::to_string(expected.outputWidth) + "x" + std::to_string(expected.outputHeight);
  EXPECT_THAT(calls({"OpenCurRenderer"}),
              ElementsAre("OpenCurRenderer none view " + std::to_string(expected.type) + " " + openSize));
  EXPECT_THAT(calls({"CurRendererRenderFrame"}),
              ElementsAre("CurRendererRenderFrame 800 #1 duration 1 none " + rectangle));
  EXPECT_THAT(calls({"Create"}), Contains(R"(Create OUT\beauty0005.exr )" + expected.rendered + " type 7"));
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\beauty0005.exr)", R"(OUT\p0005.exr)"));

  ASSERT_EQ(host.bitmaps.written.size(), 2U);
  for (const support::WrittenImage& image : host.bitmaps.written) {
    EXPECT_EQ(std::to_string(image.width) + "x" + std::to_string(image.height), expected.saved);
    const hostsdk::ColorFloat first = colorAt(expected.cutX, expected.cutY);
    const hostsdk::ColorFloat last = colorAt(expected.cutX + image.width - 1, expected.cutY + image.height - 1);
    EXPECT_EQ(image.pixels.front().r, first.r);
    EXPECT_EQ(image.pixels.front().g, first.g);
    EXPECT_EQ(image.pixels.back().r, last.r);
    EXPECT_EQ(image.pixels.back().g, last.g);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Region,
    testing::Values(
        RegionCase{"Crop", kCropOrBlowUp, 640, 480, {90, 90, 310, 210}, 10, {}, "220x120", "200x100", 10, 10},
        RegionCase{"CropInTheCorner",
                   kCropOrBlowUp,
                   640,
                   480,
                   {0, 0, 110, 110},
                   10,
                   {10, 10, 0, 0},
                   "110x110",
                   "100x100",
                   0,
                   0},
        RegionCase{"CropInTheFarCorner",
                   kCropOrBlowUp,
                   640,
                   480,
                   {530, 370, 640, 480},
                   10,
                   {0, 0, 10, 10},
                   "110x110",
                   "100x100",
                   10,
                   10},
        RegionCase{
            "CropWithoutPadding", kCropOrBlowUp, 640, 480, {100, 100, 300, 200}, 0, {}, "200x100", "200x100", 0, 0},
        RegionCase{"BlowUp", kCropOrBlowUp, 1280, 960, {200, 100, 840, 580}, 0, {}, "640x480", "640x480", 0, 0},
        RegionCase{"NoCropWithoutPadding", kNoCrop, 640, 480, {0, 0, 100, 100}, 0, {}, "640x480", "640x480", 0, 0},
        RegionCase{"NoCrop", kNoCrop, 640, 480, {0, 0, 110, 110}, 10, {10, 10, 0, 0}, "640x480", "630x470", 0, 0}),
    [](const auto& testCase) { return testCase.param.name; });

class RegionFailure : public support::FrameFixture {
 protected:
  RegionFailure() {
    useRegion(kCropOrBlowUp, {1, 1, 7, 5});
    job.settings.regionPadding = 1;
  }
};

TEST_F(RegionFailure, WithoutABitmapFailsTheFrame) {
  host.calls.on("Create", onCall(2, answering(0)));
  EXPECT_EQ(render(5), "Failed to allocate region Bitmap: TheManager->Create() return NULL");
}

TEST_F(RegionFailure, InTheWriteReleasesTheRegionsBitmap) {
  host.calls.on("OpenOutput", answering(4));
  EXPECT_EQ(render(5), "Error in bm->OpenOutput(): error code 4");
  EXPECT_THAT(calls({"PrepareGChannels", "DeleteThis"}),
              ElementsAre("PrepareGChannels #1", "PrepareGChannels #2", "DeleteThis #2", "DeleteThis #1"));
}

TEST_F(RegionFailure, ToFitTheOutputDoesNotStretchAnUnpaddedImage) {
  job.settings.regionPadding = 0;
  job.settings.regionRightOver = 60;
  job.settings.regionTopOver = 5;
  ASSERT_EQ(render(5), "");
  EXPECT_THAT(calls({"OpenOutput"}), ElementsAre(HasSubstr(R"(beauty0005.exr 6x4 )")));
}

TEST_F(RegionFailure, OfAnImageWithoutPixelsGivesSizeZero) {
  hostsdk::BitmapInfo info;
  info.SetName(at("empty.exr"));
  hostsdk::Bitmap* bitmap = host.bitmaps.Create(info);
  writeRegionOutput(job, *bitmap, info, connection);
  bitmap->DeleteThis();
  EXPECT_THAT(calls({"OpenOutput"}), ElementsAre(HasSubstr("empty.exr 0x0 ")));
}

}  // namespace
}  // namespace corvantis
