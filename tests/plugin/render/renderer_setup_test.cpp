#include "plugin/render/renderer_setup.h"

#include "support/frame_fixture.h"

namespace corvantis {
namespace {

using namespace support;
using namespace testing;

constexpr hostsdk::Class_ID kHolderCamera{0x399ee5f2, 0x584a71a8};
constexpr hostsdk::Class_ID kSinglePassEffect{0x6cc9546e, 0x0b1961b9};

class RendererSetup : public FrameFixture {
 protected:
  // Makes the render camera, with an enabled effect of 8 passes.
  FakeCamera& useCamera() {
    FakeCamera& camera = host.core.addCamera();
    cameraNode = &host.core.addNode(u"Cam", &camera);
    job.renderCamera = cameraNode;
    giveEffect(camera, 8);
    return camera;
  }
  FakeNode& addChild(const std::u16string& name, hostsdk::Object* object) {
    FakeNode& child = host.core.addNode(name, object);
    cameraNode->children.push_back(&child);
    return child;
  }
  std::string setup(std::int32_t frame = 5) {
    return errorOf([&] { setupRenderer(job, frame, connection); });
  }
  // Sets up again; the pair of lines that the worker is told of the passes.
  std::string passes() {
    job.rendererOpen = false;
    EXPECT_EQ(setup(), "");
    const std::vector<std::string> all = log.unsentLines();
    return all.at(all.size() - 2) + ", " + all.back();
  }

  const std::string off = "Multipass disabled, Rendering 1 passes";
  FakeNode* cameraNode = nullptr;
};

TEST_F(RendererSetup, OpensForTheViewport) {
  EXPECT_EQ(setup(), "");
  std::ostringstream address;
  address << static_cast<const void*>(job.renderViewport);
  EXPECT_THAT(log.lines(), Contains("Rendering view at address " + address.str()));
  EXPECT_THAT(host.calls.lines(), ElementsAre("SetupRendParams none 0", "OpenCurRenderer none view 0 8x6"));
  EXPECT_EQ(job.renderParams.width, 8);
  host.calls.clear();
  EXPECT_EQ(setup(), "");  // is open already
  EXPECT_THAT(host.calls.lines(), ElementsAre());

  job.rendererOpen = false;
  job.renderViewLocked = true;
  job.lockedViewportIndex = 2;
  job.settings.regionType = 4;
  EXPECT_EQ(setup(), "");
  EXPECT_THAT(log.unsentLines(), Contains("Rendering LOCKED viewport at index 2"));
  EXPECT_THAT(host.calls.lines(), ElementsAre("SetupRendParams none 4", "OpenCurRenderer none view 4 8x6"));
}

TEST_F(RendererSetup, OpensForACameraWithoutAnEffect) {
  useCamera().effectEnabled = false;
  EXPECT_EQ(setup(-7), "");
  EXPECT_THAT(log.unsentLines(), ElementsAre("Setting up render parameters", "Rendering camera node Cam",
                                             "Checking multipass info for frame -7", "Opening renderer",
                                             "Multipass disabled", "Rendering 1 passes"));
  EXPECT_THAT(host.calls.lines(), ElementsAre("SetupRendParams none 0", "EvalWorldState Cam -1120 1",
                                              "MultiPassEffectEnabled -1120 empty", "OpenCurRenderer Cam none 0 8x6"));
  EXPECT_EQ(job.renderCameraObject, cameraNode->object);
}

TEST_F(RendererSetup, SplitsTheFrameIntoTheEffectsPasses) {
  FakeCamera& camera = useCamera();
  EXPECT_EQ(passes(), "Multipass enabled, Rendering 8 passes");
  EXPECT_THAT(host.calls.lines(), Contains("TotalPasses 800"));
  EXPECT_EQ(job.multipassEffect, camera.effect);
  job.settings.disableMultipass = true;
  EXPECT_EQ(passes(), off);
  EXPECT_EQ(job.multipassEffect, nullptr);
  job.settings.disableMultipass = false;
  camera.effect = nullptr;  // which the camera does not hand out
  EXPECT_EQ(passes(), off);
}

TEST_F(RendererSetup, LeavesTheEffectThatRendersItsPassesItselfToRendererC) {
  giveEffect(useCamera(), 8).classId = kSinglePassEffect;
  job.isRendererB = true;
  EXPECT_EQ(passes(), off);
  job.isRendererC = true;
  EXPECT_EQ(passes(), "Multipass enabled, Rendering 1 passes");
  EXPECT_EQ(host.calls.count("TotalPasses"), 0);
}

TEST_F(RendererSetup, TakesTheEffectOfRendererAFromTheLastHolderChild) {
  useCamera().classId = kHolderCamera;
  job.isRendererA = true;
  FakeCamera& first = host.core.addCamera();
  FakeCamera& last = host.core.addCamera();
  giveEffect(first, 3);
  giveEffect(last, 4);
  addChild(u"Multipass", &first);
  FakeNode& holder = addChild(u"Multipass", &last);
  addChild(u"multipass", &first);  // another name
  EXPECT_EQ(setup(), "");
  EXPECT_THAT(log.unsentLines(),
              ElementsAre("Setting up render parameters", "Rendering camera node Cam",
                          "Checking multipass info for frame 5", "Multipass plugin holder camera node Multipass",
                          "Opening renderer", "Multipass enabled", "Rendering 4 passes"));
  EXPECT_EQ(job.multipassHolderNode, &holder);
  EXPECT_EQ(job.multipassHolderCamera, &last);
  EXPECT_EQ(job.multipassEffect, last.effect);

  last.effectEnabled = false;
  EXPECT_EQ(passes(), off);
  EXPECT_EQ(job.multipassEffect, nullptr);
  last.effectEnabled = true;
  job.settings.disableMultipass = true;
  EXPECT_EQ(passes(), off);
}

TEST_F(RendererSetup, TurnsMultipassOffForRendererAWithoutAHolder) {
  useCamera().classId = kHolderCamera;
  job.isRendererA = true;
  job.multipassEnabled = true;  // of an earlier job
  job.passCount = 9;
  job.multipassEffect = &host.core.addEffect();
  job.multipassHolderNode = cameraNode;
  EXPECT_EQ(passes(), off);
  EXPECT_EQ(job.multipassEffect, nullptr);
  EXPECT_EQ(job.multipassHolderNode, nullptr);
  EXPECT_EQ(host.calls.count("MultiPassEffectEnabled"), 0);

  FakeMesh mesh;
  for (hostsdk::Object* noCamera : {static_cast<hostsdk::Object*>(&mesh), static_cast<hostsdk::Object*>(nullptr)}) {
    addChild(u"Multipass", noCamera);
    EXPECT_EQ(passes(), off);
    EXPECT_EQ(job.multipassHolderNode, nullptr);
  }
}

TEST_F(RendererSetup, AsksTheCameraItselfWhenOnlyOneOfTheHolderConditionsHolds) {
  useCamera().classId = kHolderCamera;  // but another renderer
  EXPECT_EQ(passes(), "Multipass enabled, Rendering 8 passes");
  useCamera();  // an ordinary camera
  job.isRendererA = true;
  EXPECT_EQ(passes(), "Multipass enabled, Rendering 8 passes");
}

TEST_F(RendererSetup, FailsForANodeThatIsNoCamera) {
  FakeMesh mesh;
  for (hostsdk::Object* noCamera : {static_cast<hostsdk::Object*>(&mesh), static_cast<hostsdk::Object*>(nullptr)}) {
    job.renderCamera = &host.core.addNode(u"Group01", noCamera);
    EXPECT_EQ(setup(),
              "Camera node Group01 is not a camera node - check that there are not other nodes or groups in the scene "
              "that have the same name as the camera");
    EXPECT_EQ(host.calls.count("OpenCurRenderer"), 0);
    EXPECT_FALSE(job.rendererOpen);
  }
}

TEST_F(RendererSetup, FailsWhenTheHostCannotOpenAndTriesAgainAtTheNextFrame) {
  for (const bool withCamera : {false, true}) {
    if (withCamera) useCamera();
    host.calls.on("OpenCurRenderer", onCall(1, answering(0)));
    EXPECT_EQ(setup(), "Failed to open the max renderer.");
    EXPECT_EQ(log.unsentLines().back(), "Opening renderer");
    host.calls.on("OpenCurRenderer", onCall(1, writingToNull()));
    const std::string error = setup();
    EXPECT_EQ(error, "Trapped SEH Exception in OpenCurRenderer(): Access Violation\n" + job.crashDescription);
    EXPECT_THAT(job.crashDescription, HasSubstr("Exception Code:  C0000005"));
    EXPECT_FALSE(job.rendererOpen);
    EXPECT_EQ(setup(), "");
    EXPECT_TRUE(job.rendererOpen);
    job.rendererOpen = false;
  }
}

}  // namespace
}  // namespace corvantis
