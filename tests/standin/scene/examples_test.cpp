// The scenes that ship with the project load whole: nothing missing, nothing passed over.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "standin/scene/animation.h"
#include "standin/scene/loader.h"
#include "support/build_folders.h"

namespace standin::scene::test {
namespace {

using ::testing::IsEmpty;

Scene example(const std::string& name) {
  const std::string path = support::sourceFolder() + "/examples/" + name;
  EXPECT_TRUE(looksLikeScene(path));
  Scene scene = loadScene({path, {}, {}, {}});
  EXPECT_THAT(scene.warnings, IsEmpty());
  EXPECT_THAT(scene.problems, IsEmpty());
  return scene;
}

int nodeNamed(const Scene& scene, const std::string& name) {
  const auto named = [&name](const Node& node) { return node.name == name; };
  return static_cast<int>(std::find_if(scene.nodes.begin(), scene.nodes.end(), named) - scene.nodes.begin());
}

TEST(Examples, TheOrreryIsWhole) {
  const Scene scene = example("orrery.gltf");
  EXPECT_EQ(scene.lastFrame - scene.firstFrame + 1, 48);
  EXPECT_EQ(scene.elements.size(), 6U);
  const int camera = nodeNamed(scene, "Camera01"), closeUp = nodeNamed(scene, "CloseUp");
  EXPECT_NE(worldTransform(scene, camera, 0), worldTransform(scene, camera, 4800)) << "the camera moves";
  const auto& multipass =
      scene.cameras.at(static_cast<std::size_t>(scene.nodes.at(static_cast<std::size_t>(closeUp)).camera)).multipass;
  ASSERT_TRUE(multipass.has_value());
  EXPECT_EQ(multipass->passes, 8);
}

TEST(Examples, TheCubeTurnsBeforeItsCamera) {
  const Scene scene = example("cube.gltf");
  EXPECT_EQ(scene.render.width, 64);
  EXPECT_EQ(scene.render.height, 48);
  EXPECT_NE(worldTransform(scene, 0, 0), worldTransform(scene, 0, 7 * ticksPerFrame(scene)));
  EXPECT_EQ(scene.viewports.at(0).camera, "Camera01");
}

}  // namespace
}  // namespace standin::scene::test
