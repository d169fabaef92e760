#include "plugin/render/region_output.h"

#include "hostsdk/render.h"
#include "support/frame_fixture.h"

namespace corvantis {
namespace {

using namespace support;
using namespace testing;

constexpr std::int32_t kWhole = hostsdk::kRenderTypeWhole, kRegion = hostsdk::kRenderTypeRegion;

// A pixel tells where it is.
hostsdk::ColorFloat colorAt(int x, int y) {
  return {static_cast<float>(x + 1) / 4096.0F, static_cast<float>(y + 1) / 4096.0F, 0.5F, 1.0F};
}

class RegionOutput : public FrameFixture {};

TEST_F(RegionOutput, IsRenderedWithItsPaddingAndSavedWithoutIt) {
  const struct {
    std::int32_t type;
    hostsdk::Rect region;  // padding included
    std::int32_t padding;
    hostsdk::Rect overs;
    std::string rendered, saved;  // sizes
    int cutX, cutY;               // where in the rendered image the saved one starts
  } cases[] = {
      {kRegion, {90, 90, 310, 210}, 10, {}, "220x120", "200x100", 10, 10},
      {kRegion, {0, 0, 110, 107}, 10, {10, 7, 0, 0}, "110x107", "100x94", 0, 3},
      {kRegion, {530, 370, 640, 480}, 10, {0, 0, 10, 4}, "110x110", "100x94", 10, 10},
      {kRegion, {100, 100, 300, 200}, 0, {}, "200x100", "200x100", 0, 0},
      {kRegion, {100, 100, 300, 200}, 0, {0, 5, 60, 0}, "200x100", "200x100", 0, 0},  // unpadded is not stretched
      {kWhole, {0, 0, 100, 100}, 0, {}, "640x480", "640x480", 0, 0},
      {kWhole, {0, 0, 110, 110}, 10, {10, 10, 0, 0}, "640x480", "630x470", 0, 0},
  };
  host.core.renderWidth = 640;
  host.core.renderHeight = 480;
  host.core.color = [](int x, int y, hostsdk::TimeValue) { return colorAt(x, y); };
  addElement(u"P", at("p.exr")).color = colorAt;
  for (const auto& c : cases) {
    const hostsdk::Rect& r = c.region;
    const std::string edges = std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) +
                              "," + std::to_string(r.bottom);
    SCOPED_TRACE(edges);
    useRegion(c.type, r);
    job.settings.regionPadding = c.padding;
    job.settings.regionLeftOver = c.overs.left;
    job.settings.regionTopOver = c.overs.top;
    job.settings.regionRightOver = c.overs.right;
    job.settings.regionBottomOver = c.overs.bottom;
    job.rendererOpen = false;
    host.calls.clear();
    host.bitmaps.written.clear();

    ASSERT_EQ(render(5), "");

    EXPECT_THAT(calls({"OpenCurRenderer"}),
                ElementsAre("OpenCurRenderer none view " + std::to_string(c.type) + " 640x480"));
    EXPECT_THAT(calls({"CurRendererRenderFrame"}), ElementsAre(EndsWith(" duration 1 none " + edges)));
    EXPECT_THAT(calls({"Create"}), Contains(R"(Create OUT\beauty0005.exr )" + c.rendered + " type 7"));
    EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\beauty0005.exr)", R"(OUT\p0005.exr)"));
    ASSERT_EQ(host.bitmaps.written.size(), 2U);
    for (const WrittenImage& image : host.bitmaps.written) {
      EXPECT_EQ(std::to_string(image.width) + "x" + std::to_string(image.height), c.saved);
      const hostsdk::ColorFloat first = colorAt(c.cutX, c.cutY);
      const hostsdk::ColorFloat last = colorAt(c.cutX + image.width - 1, c.cutY + image.height - 1);
      EXPECT_TRUE(image.pixels.front().r == first.r && image.pixels.front().g == first.g);
      EXPECT_TRUE(image.pixels.back().r == last.r && image.pixels.back().g == last.g);
    }
  }
}

TEST_F(RegionOutput, FailsTheFrameWithoutABitmapAndReleasesTheOneItHas) {
  useRegion(kRegion, {1, 1, 7, 5});
  job.settings.regionPadding = 1;
  host.calls.on("Create", onCall(2, answering(0)));
  EXPECT_EQ(render(5), "Failed to allocate region Bitmap: TheManager->Create() return NULL");
  host.calls.off("Create");
  host.calls.clear();
  host.calls.on("OpenOutput", answering(4));
  EXPECT_EQ(render(5), "Error in bm->OpenOutput(): error code 4");
  EXPECT_EQ(host.calls.count("PrepareGChannels"), 2);
}

TEST_F(RegionOutput, OfAnImageWithoutPixelsHasSizeZero) {
  job.settings.regionPadding = 1;
  hostsdk::BitmapInfo info;
  info.SetName(at("empty.exr"));
  hostsdk::Bitmap* bitmap = host.bitmaps.Create(info);
  writeRegionOutput(job, *bitmap, info, connection);
  bitmap->DeleteThis();
  EXPECT_THAT(calls({"OpenOutput"}), ElementsAre(HasSubstr("empty.exr 0x0 ")));
}

}  // namespace
}  // namespace corvantis
