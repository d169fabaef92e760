#include "support/frame_fixture.h"

namespace corvantis {
namespace {

using namespace support;
using namespace testing;

class RenderElements : public FrameFixture {
 protected:
  std::vector<std::string> toldOfSaving() const { return toldFrom("Checking render elements"); }
};

TEST_F(RenderElements, AreTheEnabledOnesWithAnOutputRecord) {
  addElement(u"A", at("a.exr"));
  addElement(u"B", at("b.exr")).enabled = false;
  addElement(u"C", at("c.exr"));
  addElement(u"D", at("d.exr")).hasOutput = false;
  ASSERT_EQ(render(7), "");
  EXPECT_EQ(job.renderElementCount, 2);
  EXPECT_THAT(told(), Contains("Rendering 2 render elements"));
  EXPECT_THAT(toldOfSaving(), ElementsAre("Checking render elements", R"(Writing to output file: OUT\a0007.exr)",
                                          R"(Writing to output file: OUT\c0007.exr)"));
  EXPECT_THAT(saved(8), ElementsAre(R"(OUT\beauty0008.exr)", R"(OUT\a0008.exr)",
                                    R"(OUT\c0008.exr)"));  // from the scene's names again
  job.rendererOpen = false;
  host.core.elements.active = false;
  ASSERT_EQ(render(9), "");
  EXPECT_THAT(told(), Contains("Rendering 0 render elements"));
}

TEST_F(RenderElements, TakeTheirPreparationFromTheScene) {
  const hostsdk::BitmapInfo& info = addElement(u"A", at("a.exr")).output.info;
  host.core.renderer.requirements = {3};
  host.core.renderPixelAspect = 1.5F;
  ASSERT_EQ(render(7), "");
  EXPECT_EQ(info.Type(), hostsdk::kBitmapRealPixFloat32);
  EXPECT_EQ(info.Width(), 8);
  EXPECT_EQ(info.Height(), 6);
  EXPECT_EQ(info.Aspect(), 1.5F);
  EXPECT_NE(info.Flags() & hostsdk::kMapHasAlpha, 0U);
}

TEST_F(RenderElements, ThatAreIgnoredAreRenderedButNotSaved) {
  addElement(u"Depth", at("gone/depth.exr"));
  addElement(u"depth", at("kept/depth.exr"));
  job.settings.ignoredRenderElementNames = {u"Dep", u"Depth"};
  EXPECT_THAT(saved(7), ElementsAre(R"(OUT\beauty0007.exr)", R"(OUT\kept\depth0007.exr)"));
  EXPECT_THAT(told(), Not(Contains(R"(Creating output path: OUT\gone)")));
  EXPECT_THAT(told(), Contains(R"(Creating output path: OUT\kept)"));
  EXPECT_EQ(host.calls.count("Create"), 3);

  job.settings.ignoredRenderElementNames.clear();
  job.settings.saveRenderElements = false;  // which leaves out all of them
  host.calls.clear();
  log.startAgain();
  EXPECT_THAT(saved(8), ElementsAre(R"(OUT\beauty0008.exr)"));
  EXPECT_THAT(told(), Not(Contains("Checking render elements")));
  EXPECT_THAT(told(), Not(Contains(StartsWith("Creating output path: "))));
  EXPECT_THAT(calls({"Create"}), Contains(R"(Create OUT\gone\depth0008.exr 8x6 type 7)"));
}

TEST_F(RenderElements, FallBackOnTheScenesNamesWhereTheListIsTooShort) {
  addElement(u"A", at("a.exr")).enabled = false;
  addElement(u"B", at("b.exr"));
  addElement(u"C", at("c.exr"));
  job.settings.renderElementFilenames = {at("given.exr")};
  EXPECT_THAT(saved(7), ElementsAre(R"(OUT\beauty0007.exr)", R"(OUT\b0007.exr)",
                                    R"(OUT\c0007.exr)"));  // the list is not to be used
  job.settings.useRenderElementFilenames = true;
  EXPECT_THAT(saved(7), ElementsAre(R"(OUT\beauty0007.exr)", R"(OUT\given0007.exr)", R"(OUT\c0007.exr)"));
  job.settings.removePadding = true;
  EXPECT_THAT(saved(7), ElementsAre(R"(OUT\beauty.exr)", R"(OUT\given.exr)", R"(OUT\c.exr)"));
}

TEST_F(RenderElements, WithoutABitmapArePassedOver) {
  addElement(u"A", at("a.exr"));
  addElement(u"B", at("b.exr"));
  failOnBlack(true);
  host.calls.on("Create", onCall(2, answering(0)));
  EXPECT_THAT(saved(7), ElementsAre(R"(OUT\beauty0007.exr)", R"(OUT\b0007.exr)"));
  EXPECT_THAT(told(), Not(Contains(R"(Checking if OUT\a0007.exr is black)")));
}

TEST_F(RenderElements, FailTheFrameWhenTheyAreBlackAndAreToBeChecked) {
  failOnBlack(true);
  addElement(u"A", at("a.exr"));
  addElement(u"B", at("b.exr")).color = [](int, int) { return hostsdk::ColorFloat{0, 0, 0, 1}; };
  addElement(u"C", at("c.exr"));
  EXPECT_EQ(render(7), "100% of the output image is black, which equals or exceeds the minimum of 50%");
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\beauty0007.exr)", R"(OUT\a0007.exr)"));
  EXPECT_THAT(told(), Contains(R"(Checking if OUT\b0007.exr is black)"));
  failOnBlack(false);
  EXPECT_EQ(render(7), "");
}

TEST_F(RenderElements, WithoutAFileNameAreCheckedForBlackAndWarnedOf) {
  failOnBlack(true);
  addElement(u"A", at("a.exr"));
  addElement(u"B", u"");
  ASSERT_EQ(render(7), "");
  EXPECT_THAT(toldOfSaving(), Contains("Checking if  is black"));
  EXPECT_EQ(told().back(), "Not saving render element 1 because its output path is empty");
  EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\beauty0007.exr)", R"(OUT\a0007.exr)"));
  EXPECT_THAT(calls({"Create"}), Contains("Create  8x6 type 7"));
}

}  // namespace
}  // namespace corvantis
