#include "support/frame_fixture.h"

namespace corvantis {
namespace {

using namespace support;
using namespace testing;

class Multipass : public FrameFixture {};

// Bitmap 1 is the main one, 2 the element's, 3 its accumulator, 4 the passes'.
TEST_F(Multipass, HandsTheEffectItsBitmapsAndTimes) {
  useMultipass(2).timeShift = 40;
  addElement(u"Z", at("z.exr"));
  useRegion(1, {1, 2, 3, 4});
  ASSERT_EQ(render(2), "");
  EXPECT_THAT(
      calls({"SetupPass", "CurRendererRenderFrame", "AccumulateBitmap", "Finish", "DeleteThis", "OpenOutput"}),
      ElementsAre("SetupPass Cam camera pass 0 time 320", "CurRendererRenderFrame 320 #4 duration 1 view 1,2,3,4",
                  "AccumulateBitmap #1 #4 pass 0 time 320", "AccumulateBitmap #3 #2 pass 0 time 320",
                  "SetupPass Cam camera pass 1 time 320", "CurRendererRenderFrame 360 #4 duration 1 view 1,2,3,4",
                  "AccumulateBitmap #1 #4 pass 1 time 360", "AccumulateBitmap #3 #2 pass 1 time 360", "DeleteThis #4",
                  "Finish", R"(OpenOutput #1 OUT\beauty0002.exr 8x6 type 7)", "DeleteThis #2",
                  R"(OpenOutput #3 OUT\z0002.exr 8x6 type 7)", "DeleteThis #1", "DeleteThis #3"));
  ASSERT_EQ(host.bitmaps.written.size(), 2U);
  EXPECT_NEAR(host.bitmaps.written[0].pixels[0].r, 0.5F, 1e-5F);
  EXPECT_NEAR(host.bitmaps.written[1].pixels[0].b, 0.75F, 1e-5F);
}

TEST_F(Multipass, SavesTheEmptyImageOfAnEffectWithoutPasses) {
  useMultipass(0);
  ASSERT_EQ(render(2), "");
  const std::vector<std::string> lines = toldFrom("Rendering multipass effect:");
  EXPECT_EQ(lines.at(1), "Render done");
  EXPECT_THAT(calls({"Finish"}), ElementsAre("Finish"));
  ASSERT_EQ(host.bitmaps.written.size(), 1U);
  EXPECT_EQ(host.bitmaps.written[0].pixels[0].a, 0.0F);
}

TEST_F(Multipass, EndsAtAFailingOrFaultingPassOrWithoutABitmap) {
  const std::string returned = "  CallCurRendererRenderFrame returned code 0";
  const struct {
    const char* operation;
    int call;
    Hook hook;
    std::string error, lastLine;
  } cases[] = {
      {"CurRendererRenderFrame", 2, answering(0), "Failed to render the frame for pass 2 of 3", "  Failure"},
      {"CurRendererRenderFrame", 2, writingToNull(),
       "Trapped SEH Exception in CurRendererRenderFrame(): Access Violation\nProcess:  ", returned},
      {"Create", 4, answering(0), "Failed to allocate Bitmap: TheManager->Create() return NULL",
       "Rendering multipass effect:"},
  };
  useMultipass(3);
  addElement(u"Z", at("z.exr"));
  for (const auto& c : cases) {
    host.calls.on(c.operation, onCall(c.call, c.hook));
    EXPECT_THAT(render(2), StartsWith(c.error));
    EXPECT_EQ(told().back(), c.lastLine);
    if (&c == cases) {  // the bitmaps of the pass go first
      EXPECT_THAT(calls({"DeleteThis"}),
                  ElementsAre("DeleteThis #4", "DeleteThis #2", "DeleteThis #1", "DeleteThis #3"));
    }
    host.calls.off(c.operation);
  }
  EXPECT_EQ(host.calls.count("Finish"), 0);
  EXPECT_EQ(render(3), "");
}

TEST_F(Multipass, ShowsThePassesAndHidesThemOnce) {
  useMultipass(2);
  job.settings.showFrameBuffer = true;
  host.calls.on("SetupPass", answering(0));  // a view of none
  ASSERT_EQ(render(2), "");
  EXPECT_THAT(calls({"Display", "CurRendererRenderFrame", "UnDisplay", "DeleteThis"}),
              ElementsAre(StartsWith("Display #2 "), "CurRendererRenderFrame 320 #2 duration 1 none none",
                          StartsWith("Display #2 "), "CurRendererRenderFrame 320 #2 duration 1 none none",
                          "UnDisplay #2", "DeleteThis #2", "DeleteThis #1"));
}

// Creates: main, first element, second element, first accumulator, second accumulator, passes.
TEST_F(Multipass, LeavesOutAnElementThatLacksABitmapOrAnAccumulator) {
  useMultipass(1);
  addElement(u"Z", at("z.exr"));
  addElement(u"N", at("n.exr"));
  for (const int missing : {2, 4}) {
    host.calls.clear();
    log.startAgain();
    host.calls.on("Create", onCall(missing, answering(0)));
    ASSERT_EQ(render(2), "") << missing;
    EXPECT_THAT(told(), Contains("  Accumulating render element 1 of 2"));
    EXPECT_THAT(calls({"AccumulateBitmap"}), SizeIs(2)) << missing;
    EXPECT_THAT(savedFiles(), ElementsAre(R"(OUT\beauty0002.exr)", R"(OUT\n0002.exr)")) << missing;
  }
}

}  // namespace
}  // namespace corvantis
