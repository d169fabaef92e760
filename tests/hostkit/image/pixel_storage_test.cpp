#include "hostkit/image/pixel_storage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "hostkit/image/bitmap_manager.h"

namespace hostkit::image {
namespace {

using hostsdk::ColorFloat;

TEST(PixelStorage, KeepsPixelsAsPreciselyAsItsTypeAllows) {
  PixelStorage floats(3, 2, hostsdk::kBitmapRealPixFloat32);
  PixelStorage integers(3, 2, hostsdk::kBitmapTrueColor64);
  const ColorFloat in[2] = {{0.25F, 1.5F, -1.0F, 1.0F}, {std::nanf(""), 0.0F, 1.0F, 0.5F}};
  ASSERT_EQ(floats.PutLinearPixels(1, 1, 2, in), 1);
  ASSERT_EQ(integers.PutLinearPixels(1, 1, 2, in), 1);

  ColorFloat out[2];
  ASSERT_EQ(floats.GetLinearPixels(1, 1, 2, out), 1);
  EXPECT_EQ(out[0].g, 1.5F);
  EXPECT_EQ(out[0].b, -1.0F);
  EXPECT_TRUE(std::isnan(out[1].r));
  ASSERT_EQ(integers.GetLinearPixels(1, 1, 2, out), 1);
  EXPECT_NEAR(out[0].r, 0.25F, 1.0F / 65535);
  EXPECT_EQ(out[0].g, 1.0F);
  EXPECT_EQ(out[0].b, 0.0F);
  EXPECT_EQ(out[1].r, 0.0F) << "a NaN has no integer";
}

TEST(PixelStorage, RefusesPixelsOutsideTheImage) {
  PixelStorage storage(4, 3, hostsdk::kBitmapRealPixFloat32);
  ColorFloat pixels[8];
  const struct {
    int x, y, count, answer;
  } cases[] = {{0, 0, 4, 1},
               {3, 2, 1, 1},
               {0, 0, 5, 0},
               {-1, 0, 1, 0},
               {0, -1, 1, 0},
               {0, 3, 1, 0},
               {4, 0, 0, 1},
               {std::numeric_limits<int>::max(), 0, 1, 0},
               {1, 0, std::numeric_limits<int>::max(), 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(storage.GetLinearPixels(c.x, c.y, c.count, pixels), c.answer) << c.x << "," << c.y << " +" << c.count;
    EXPECT_EQ(storage.PutLinearPixels(c.x, c.y, c.count, pixels), c.answer) << c.x << "," << c.y << " +" << c.count;
  }
}

// A source whose red channel counts its pixels, placed at (x, y) in a smaller or larger destination.
TEST(PixelStorage, PlacesAnImageByTheCustomFields) {
  ImageCodecLibrary codecs("no such module");
  hostkit::services::GammaManager gamma;
  ImageBitmapManager manager(codecs, gamma, "test", [](const std::string&) {});
  hostsdk::BitmapInfo sourceInfo;
  sourceInfo.SetWidth(6);
  sourceInfo.SetHeight(5);
  sourceInfo.SetType(hostsdk::kBitmapRealPixFloat32);
  hostsdk::Bitmap* source = manager.Create(sourceInfo);
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 6; ++x) {
      const ColorFloat pixel{static_cast<float>(y * 6 + x + 1), 0, 0, 1};
      source->Storage()->PutLinearPixels(x, y, 1, &pixel);
    }

  const struct { int x, y; } places[] = {{-2, -1}, {0, 0}, {1, 2}, {-6, 0}, {9, 9}};
  for (const auto& place : places) {
    PixelStorage destination(4, 4, hostsdk::kBitmapRealPixFloat32);
    hostsdk::BitmapInfo info;
    info.SetCustomX(place.x);
    info.SetCustomY(place.y);
    info.SetCustomWidth(6);
    info.SetCustomHeight(5);
    info.SetCustomFlags(hostsdk::kCustomOffset | hostsdk::kCustomSize);
    ASSERT_EQ(destination.CopyImage(source, hostsdk::kCopyImageUseCustom, {0, 0, 0, 0}, info), 1);
    for (int y = 0; y < 4; ++y)
      for (int x = 0; x < 4; ++x) {
        const int sx = x - place.x, sy = y - place.y;
        const bool covered = sx >= 0 && sx < 6 && sy >= 0 && sy < 5;
        ColorFloat pixel;
        destination.GetLinearPixels(x, y, 1, &pixel);
        EXPECT_EQ(pixel.r, covered ? static_cast<float>(sy * 6 + sx + 1) : 0.0F) << x << "," << y << " at " << place.x;
      }
  }
  source->DeleteThis();
  EXPECT_EQ(manager.liveBitmaps(), 0);
}

}  // namespace
}  // namespace hostkit::image
