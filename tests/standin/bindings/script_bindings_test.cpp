// Scripts against the host's globals and nodes.
#include <gtest/gtest.h>

#include "hostkit/text/utf8.h"
#include "standin/program/host_application.h"
#include "support/small_scene.h"
#include "support/temporary_folder.h"

namespace standin::bindings {
namespace {

class ScriptedHost : public testing::Test {
 protected:
  void SetUp() override {
    folder_.write("scene.gltf",
                  support::smallScene(R"("frameRate":24,"animationRange":[5,20],"render":{"width":320,"output":"a.exr"},
      "elements":[{"name":"Z","type":"depth","output":"z.exr"}])"));
    ASSERT_TRUE(host_.core().LoadFromFile(folder_.wide("scene.gltf"), 14));
  }
  std::string value(const std::string& script) {
    const auto result = host_.scripts().runText(hostkit::fromUtf8(script));
    return hostkit::toUtf8(result.succeeded ? result.printed : result.errorText);
  }
  support::TemporaryFolder folder_;
  standin::program::HostApplication host_;
};

TEST_F(ScriptedHost, GlobalsReadAndChangeTheHost) {
  const struct {
    const char* script;
    const char* value;
  } cases[] = {
      {"sliderTime", "5f"},
      {"sliderTime = 12; sliderTime", "12f"},
      {"currentTime", "12f"},
      {"animationRange", "(interval 5f 20f)"},
      {"frameRate", "24"},
      {"ticksPerFrame", "200"},
      {"renderWidth", "320"},
      {"renderWidth = 100; renderWidth", "100"},
      {"rendSaveFile = false; rendSaveFile", "false"},
      {"rendOutputFilename = \"c:\\\\x.png\"; rendOutputFilename", "\"c:\\x.png\""},
      {"maxFileName", "\"scene.gltf\""},
      {"objects.count", "5"},
      {"$Camera01.name", "\"Camera01\""},
      {"superClassOf $Camera01", "camera"},
      {"$Camera01.pos", "[0,0,5]"},
      {"$Camera01.pos = [1,2,3]; $Camera01.pos", "[1,2,3]"},
      {"$Side.children.count", "1"},
      {"$Multipass.parent.name", "\"Side\""},
      {"$Quad.isHidden = true; $Quad.isHidden", "true"},
      {"$Sun.multiplier = 2.5; $Sun.multiplier", "2.5"},
      {"(maxOps.GetCurRenderElementMgr()).NumRenderElements()", "1"},
      {"((maxOps.GetCurRenderElementMgr()).GetRenderElement 0).elementName", "\"Z\""},
      {"renderers.current.samples = 9; renderers.current.samples", "9"},
      {"renderers.medit.samples", "9"},
      {"getPropNames renderers", "#(#current, #production, #medit, #activeShade)"},
      {"Renderers.ACTIVESHADE.Samples", "9"},
      {"findItem (getPropNames $Sun) #isHidden > 0 and findItem (getPropNames $Sun) #fov == 0", "true"},
      {"LayerManager.count", "1"},
      {"(LayerManager.getLayer 0).name", "\"0\""},
      {"LayerManager.getLayerFromName \"props\"", "undefined"},
      {"LayerManager.current.isHidden = true; $Sun.isHidden", "true"},
      {"(LayerManager.getLayerFromName \"0\").on = true; $Sun.isHidden", "false"},
      {"$Quad.isHidden = true; $Quad.isHidden", "true"},
      {"select $Quad; selection.count", "1"},
      {"$Quad.isSelected", "true"},
      {"renderers.current.progressive_max_time = 2.5; renderers.current.progressive_max_time", "2.5"},
      {"$Nobody", "undefined"},
      {"rendTimeType = 4; rendPickupFrames = \"1-5\"; rendTimeType", "4"},
      {"rendStart = 3; rendStart", "3f"},
      {"skipRenderedFrames = true; skipRenderedFrames", "true"},
      {"backgroundColor = red; backgroundColor", "(color 255 0 0)"},
      {"setRenderType #region; getRenderType()", "#region"},
      {"renderSceneDialog.close(); renderSceneDialog.isOpen()", "false"},
      {"viewport.getCamera()", "$Freecamera:Camera01 @ [1.000000,2.000000,3.000000]"},
      {"viewport.setCamera $Side; (viewport.getCamera()).name", "\"Side\""},
      {"viewport.activeViewport", "1"},
      {"rootNode.children.count", "4"},
      {"sceneMaterials.count", "1"},
      {"$Quad.material.base_color", "(color 204 51 25.5)"},
      {"$Sun.material", "undefined"},
      {"$Sun.on = false; $Sun.enabled", "false"},
      {"getUserProp $Quad \"cost\"", "undefined"},
      {"setUserProp $Quad \"cost\" 3; getUserProp $Quad \"cost\"", "3"},
      {"setUserProp objects \"note\" \"all\"; getUserProp $Sun \"note\"", "\"all\""},
      {"getUserProp $Side \"shots\"", "12"},
  };
  for (const auto& c : cases) EXPECT_EQ(value(c.script), c.value) << c.script;
  EXPECT_EQ(host_.core().GetTime(), 12 * 200);
  EXPECT_EQ(host_.core().RenderWidth(), 100);
  EXPECT_FALSE(host_.core().live().description().nodes[0].visible);
}

TEST_F(ScriptedHost, WrongValuesAreErrorsAndChangeNothing) {
  const struct {
    const char* script;
    const char* named;
  } cases[] = {
      {"renderWidth = 0", "renderWidth requires an Integer from 1 to 32767"},
      {"renderWidth = \"wide\"", "-- Type error: renderWidth requires Integer, got: \"wide\""},
      {"currentTime = 5", "currentTime"},
      {"rendTimeType = \"all\"", "rendTimeType requires Integer"},
      {"viewport.setCamera $Quad", "viewport.setCamera requires a camera"},
      {"viewport.activeViewport = 2", "Viewport index is out of range: 2"},
      {"render()", "render is not supported by this host"},
      {"dotNetObject \"System.String\"", "dotNetObject is not supported by this host"},
      {"$Camera01.pos = 5", "position requires Point3"},
      {"$Camera01.fov = 180", "fov requires"},
      {"(maxOps.GetCurRenderElementMgr()).GetRenderElement 1", "out of range: 1"},
      {"(maxOps.GetCurRenderElementMgr()).GetRenderElement()",
       "-- Argument count error: GetRenderElement wanted 1, got 0"},
      {"(maxOps.GetCurRenderElementMgr()).NumRenderElements 1",
       "-- Argument count error: NumRenderElements wanted 0, got 1"},
      {"(maxOps.GetCurRenderElementMgr()).GetRenderElement \"Z\"",
       "-- Type error: Render element index requires Integer, got: \"Z\""},
      {"LayerManager.getLayer 0 1", "getLayer wanted 1, got 2"},
      {"renderers.current.samples = 0", "samples requires an Integer from 1 to 65536"},
      {"animationRange = 5", "animationRange requires Interval"},
      {"$Camera01.rotation = 5", "rotation requires Quat"},
      {"setRenderType()", "setRenderType wanted 1, got 0"},
      {"n = $Quad; resetMaxFile #noPrompt; n.name", "Unknown property"},
  };
  for (const auto& c : cases)
    EXPECT_NE(value(c.script).find(c.named), std::string::npos) << c.script << ": " << value(c.script);
}

TEST_F(ScriptedHost, CallbacksSeeTheRendersEvents) {
  EXPECT_EQ(value("seen = #(); callbacks.addScript #preRender \"append seen 1\" id:#a; "
                  "callbacks.addScript #postRender \"append seen 2\" id:#a; seen.count"),
            "0");
  ASSERT_EQ(host_.core().OpenCurRenderer(host_.core().NodeByName(u"Camera01"), nullptr, 0, 8, 8), 1);
  host_.core().CloseCurRenderer();
  EXPECT_EQ(value("seen"), "#(1, 2)");
}

}  // namespace
}  // namespace standin::bindings
