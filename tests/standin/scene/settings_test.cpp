// The "standin" settings of scene files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "scene_builder.h"
#include "standin/scene/loader.h"
#include "support/temporary_folder.h"

namespace standin::scene::test {
namespace {

using ClassIdPair = std::pair<std::uint32_t, std::uint32_t>;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A scene with a triangle (node 0) and a camera "Camera01" (node 1).
SceneBuilder plainScene() {
  SceneBuilder builder;
  builder.addTriangle();
  builder.add("cameras", {{"type", "perspective"}, {"perspective", {{"yfov", 0.5}, {"znear", 0.1}}}});
  builder.json["scenes"][0]["nodes"].push_back(builder.add("nodes", {{"name", "Camera01"}, {"camera", 0}}));
  return builder;
}

TEST(Settings, HaveDefaultsWithoutAnyExtras) {
  const support::TemporaryFolder folder;
  const Scene scene = loadScene({folder.write("a.gltf", plainScene().gltf()), {}, {}, {}});
  EXPECT_EQ(scene.frameRate, 30);
  EXPECT_EQ(ticksPerFrame(scene), 160);
  EXPECT_EQ(scene.firstFrame, 0);
  EXPECT_EQ(scene.lastFrame, 100);
  EXPECT_EQ(scene.render.width, 640);
  EXPECT_EQ(scene.render.height, 480);
  EXPECT_TRUE(scene.render.saveFile);
  EXPECT_EQ(scene.render.output, "");
  EXPECT_THAT(scene.render.requirements, ElementsAre(3));
  ASSERT_EQ(scene.viewports.size(), 1U);
  EXPECT_EQ(scene.viewports[0].camera, "Camera01");
  EXPECT_EQ(scene.lockedViewport, kNone);
  EXPECT_FALSE(scene.cameras.at(0).multipass.has_value());
}

TEST(Settings, EveryKeyReachesItsField) {
  SceneBuilder builder = plainScene();
  builder.json["scenes"][0]["extras"]["standin"] = nlohmann::json::parse(R"({
    "frameRate": 24,
    "animationRange": [-5, 48],
    "render": { "width": 320, "height": 200, "pixelAspect": 1.5, "saveFile": false, "output": "out/beauty.exr",
                "skipExisting": true, "samples": 16, "renderer": "B", "requirements": [2, 3], "elementsActive": false },
    "elements": [ { "name": "Z", "type": "depth", "enabled": false, "output": "/abs/z.exr" },
                  { "type": "direct light" }, { "type": "objectId" } ],
    "viewports": [ { "camera": "Camera01" }, { "eye": [0, 1, 5], "target": [0, 0.5, 0], "fov": 60 } ],
    "activeViewport": 1, "lockedViewport": 2,
    "xrefs": [], "plugins": [] })");
  builder.json["nodes"][1]["extras"]["standin"] = nlohmann::json::parse(R"({
    "multipass": { "effect": "motionBlur", "enabled": false, "passes": 4, "focusDistance": 2.5, "aperture": 0.25,
                   "duration": 0.75 },
    "classId": [966714866, 1481273768] })");
  builder.json["nodes"][0]["extras"]["standin"] = {{"visible", false}};
  const support::TemporaryFolder folder;
  const Scene scene = loadScene({folder.write("a.gltf", builder.gltf()), {}, {}, {}});

  EXPECT_EQ(ticksPerFrame(scene), 200);
  EXPECT_EQ(scene.firstFrame, -5);
  EXPECT_EQ(scene.lastFrame, 48);
  EXPECT_EQ(scene.render.width, 320);
  EXPECT_EQ(scene.render.height, 200);
  EXPECT_EQ(scene.render.pixelAspect, 1.5F);
  EXPECT_FALSE(scene.render.saveFile);
  EXPECT_EQ(scene.render.output, folder.path("out/beauty.exr"));
  EXPECT_TRUE(scene.render.skipExisting);
  EXPECT_EQ(scene.render.samples, 16);
  EXPECT_EQ(std::get<std::string>(scene.render.renderer), "B");
  EXPECT_THAT(scene.render.requirements, ElementsAre(2, 3));
  EXPECT_FALSE(scene.render.elementsActive);
  ASSERT_EQ(scene.elements.size(), 3U);
  EXPECT_EQ(scene.elements[0].name, "Z");
  EXPECT_EQ(scene.elements[0].type, ElementType::depth);
  EXPECT_FALSE(scene.elements[0].enabled);
  EXPECT_EQ(scene.elements[0].output, "/abs/z.exr");
  EXPECT_EQ(scene.elements[1].type, ElementType::directLight);
  EXPECT_EQ(scene.elements[1].name, "direct light");
  EXPECT_EQ(scene.elements[2].type, ElementType::objectId);
  ASSERT_EQ(scene.viewports.size(), 3U) << "as many as the indices name";
  EXPECT_EQ(scene.viewports[1].fov, 60);
  EXPECT_EQ(scene.viewports[1].target.y, 0.5F);
  EXPECT_EQ(scene.activeViewport, 1);
  EXPECT_EQ(scene.lockedViewport, 2);

  const Camera& camera = scene.cameras.at(0);
  const ClassIdPair expected{966714866, 1481273768};
  EXPECT_EQ(camera.classId, expected);
  EXPECT_EQ(scene.nodes.at(1).classId, expected);
  ASSERT_TRUE(camera.multipass.has_value());
  EXPECT_EQ(camera.multipass->kind, EffectKind::motionBlur);
  EXPECT_FALSE(camera.multipass->enabled);
  EXPECT_EQ(camera.multipass->passes, 4);
  EXPECT_EQ(camera.multipass->focusDistance, 2.5F);
  EXPECT_EQ(camera.multipass->aperture, 0.25F);
  EXPECT_EQ(camera.multipass->duration, 0.75F);
  EXPECT_FALSE(scene.nodes.at(0).visible);
  EXPECT_THAT(scene.warnings, IsEmpty());
  EXPECT_THAT(scene.problems, IsEmpty());
}

TEST(Settings, ClassIdentifiersMayBePairsOfNumbers) {
  SceneBuilder builder = plainScene();
  builder.json["scenes"][0]["extras"]["standin"]["render"]["renderer"] = {1, 4294967295U};
  builder.json["nodes"][1]["extras"]["standin"]["multipass"]["effect"] = {7, 8};
  const support::TemporaryFolder folder;
  const Scene scene = loadScene({folder.write("a.gltf", builder.gltf()), {}, {}, {}});
  EXPECT_EQ(std::get<ClassIdPair>(scene.render.renderer), (ClassIdPair{1, 4294967295U}));
  EXPECT_EQ(scene.cameras.at(0).multipass->kind, EffectKind::other);
  EXPECT_EQ(scene.cameras.at(0).multipass->classId, (ClassIdPair{7, 8}));
}

TEST(Settings, UnknownKeysAndUnfitPlacesAreWarnings) {
  SceneBuilder builder = plainScene();
  builder.json["scenes"][0]["extras"]["standin"] = nlohmann::json::parse(
      R"({"framerate": 24, "render": {"widht": 3}, "elements": [{"type": "depth", "format": 1}],
          "viewports": [{"camera": "Nobody"}]})");
  builder.json["nodes"][0]["extras"]["standin"] = {{"multipass", nlohmann::json::object()}, {"colour", 1}};
  const support::TemporaryFolder folder;
  const Scene scene = loadScene({folder.write("a.gltf", builder.gltf()), {}, {}, {}});
  EXPECT_THAT(
      scene.warnings,
      ElementsAre("extras.standin.render.widht: unknown key, passed over",
                  "extras.standin.elements[0].format: unknown key, passed over",
                  "extras.standin.framerate: unknown key, passed over",
                  "nodes[0].extras.standin.multipass: the node is no camera; passed over",
                  "nodes[0].extras.standin.colour: unknown key, passed over",
                  "extras.standin.viewports[0].camera: the scene has no camera \"Nobody\"; the viewport shows a plain "
                  "view"));
  EXPECT_EQ(scene.viewports.at(0).camera, "");
}

struct WrongSetting {
  std::string settings, error;
  friend void PrintTo(const WrongSetting& w, std::ostream* out) { *out << w.settings; }
};

class WrongSettings : public ::testing::TestWithParam<WrongSetting> {};

TEST_P(WrongSettings, AreLoadErrorsThatNameTheKey) {
  SceneBuilder builder = plainScene();
  const auto settings = nlohmann::json::parse(GetParam().settings);
  // Settings of a node are given as {"node": ...}.
  if (settings.contains("node"))
    builder.json["nodes"][1]["extras"]["standin"] = settings["node"];
  else
    builder.json["scenes"][0]["extras"]["standin"] = settings;
  const support::TemporaryFolder folder;
  const std::string path = folder.write("a.gltf", builder.gltf());
  try {
    loadScene({path, {}, {}, {}});
    FAIL() << "loaded";
  } catch (const SceneError& e) {
    EXPECT_EQ(e.what(), path + ": " + GetParam().error);
  }
}

const WrongSetting kWrongSettings[] = {
    {R"([3])", R"(extras.standin: expected an object, got [3])"},
    {R"({"frameRate": 0})", "extras.standin.frameRate: expected an integer from 1 to 4800, got 0"},
    {R"({"frameRate": 29.97})", "extras.standin.frameRate: expected an integer from 1 to 4800, got 29.97"},
    {R"({"animationRange": [10, 1]})",
     "extras.standin.animationRange: expected the first and the last frame, got [10,1]"},
    {R"({"animationRange": [0]})", "extras.standin.animationRange: expected the first and the last frame, got [0]"},
    {R"({"animationRange": [0, 500000]})",
     "extras.standin.animationRange: expected a list of integers from -400000 to 400000, got [0,500000]"},
    {R"({"render": 1})", "extras.standin.render: expected an object, got 1"},
    {R"({"render": {"width": "wide"}})",
     R"(extras.standin.render.width: expected an integer from 1 to 32767, got "wide")"},
    {R"({"render": {"height": 32768}})",
     "extras.standin.render.height: expected an integer from 1 to 32767, got 32768"},
    {R"({"render": {"pixelAspect": 0}})",
     "extras.standin.render.pixelAspect: expected a number from 0.01 to 100.0, got 0"},
    {R"({"render": {"saveFile": 1}})", "extras.standin.render.saveFile: expected true or false, got 1"},
    {R"({"render": {"output": null}})", "extras.standin.render.output: expected text, got null"},
    {R"({"render": {"samples": 18446744073709551615}})",
     "extras.standin.render.samples: expected an integer from 1 to 65536, got 18446744073709551615"},
    {R"({"render": {"renderer": "D"}})",
     R"(extras.standin.render.renderer: expected "default", "A", "B", "C" or a list of 2 integers, got "D")"},
    {R"({"render": {"renderer": [1, -1]}})",
     "extras.standin.render.renderer: expected a list of 2 integers from 0 to 4294967295, got [1,-1]"},
    {R"({"render": {"requirements": [3, "2"]}})",
     R"(extras.standin.render.requirements: expected a list of integers from 0 to 65535, got [3,"2"])"},
    {R"({"elements": {"name": "Z"}})", R"(extras.standin.elements: expected a list of objects, got {"name":"Z"})"},
    {R"({"elements": [{"type": "depth"}, {"name": "Q"}]})",
     R"(extras.standin.elements[1].type: expected one of "beauty", "alpha", "depth", "normal", "albedo", "position", )"
     R"("objectId", "directLight", "emission", got nothing)"},
    {R"({"elements": [7]})", "extras.standin.elements[0]: expected an object, got 7"},
    {R"({"viewports": [{"eye": [0, 1]}]})", "extras.standin.viewports[0].eye: expected a list of 3 numbers, got [0,1]"},
    {R"({"viewports": [{"fov": 180}]})",
     "extras.standin.viewports[0].fov: expected a number from 1.0 to 179.0, got 180"},
    {R"({"lockedViewport": 16})", "extras.standin.lockedViewport: expected an integer from -1 to 15, got 16"},
    {R"({"xrefs": "props.glb"})", R"(extras.standin.xrefs: expected a list of texts, got "props.glb")"},
    {R"({"plugins": [1]})", "extras.standin.plugins: expected a list of texts, got [1]"},
    {R"({"node": {"visible": "no"}})", R"(nodes[1].extras.standin.visible: expected true or false, got "no")"},
    {R"({"node": {"classId": [1]}})",
     "nodes[1].extras.standin.classId: expected a list of 2 integers from 0 to 4294967295, got [1]"},
    {R"({"node": {"multipass": {"effect": "bokeh"}}})",
     R"(nodes[1].extras.standin.multipass.effect: expected "depthOfField", "motionBlur" or a list of 2 integers, )"
     R"(got "bokeh")"},
    {R"({"node": {"multipass": {"passes": 1.5}}})",
     "nodes[1].extras.standin.multipass.passes: expected an integer from 0 to 1024, got 1.5"},
    {R"({"node": {"multipass": {"aperture": -1}}})",
     "nodes[1].extras.standin.multipass.aperture: expected a number from 0.0 to 1000.0, got -1"},
};

INSTANTIATE_TEST_SUITE_P(Table, WrongSettings, ::testing::ValuesIn(kWrongSettings));

}  // namespace
}  // namespace standin::scene::test
