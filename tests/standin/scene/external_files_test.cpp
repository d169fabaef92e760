// Textures, plug-ins and external scenes: found, missing, merged.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "scene_builder.h"
#include "standin/scene/animation.h"
#include "standin/scene/loader.h"
#include "support/temporary_folder.h"

namespace standin::scene::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::vector<std::string> problemsOf(const Scene& scene, LoadProblem::Kind kind) {
  std::vector<std::string> messages;
  for (const LoadProblem& problem : scene.problems)
    if (problem.kind == kind) messages.push_back(problem.message);
  return messages;
}

// A textured triangle; the texture is what `image` says.
SceneBuilder textured(const nlohmann::json& image, bool withTexCoords = true) {
  SceneBuilder builder;
  builder.addTriangle();
  builder.add("images", image);
  builder.add("textures", {{"source", 0}});
  builder.add("materials", {{"name", "Paint"},
                            {"pbrMetallicRoughness", {{"baseColorTexture", {{"index", 0}}}}},
                            {"emissiveTexture", {{"index", 0}}}});
  auto& primitive = builder.json["meshes"][0]["primitives"][0];
  primitive["material"] = 0;
  if (withTexCoords) primitive["attributes"]["TEXCOORD_0"] = builder.floats({0, 0, 1, 0, 0, 1}, "VEC2");
  return builder;
}

// Red, and half grey as stored.
const std::string kPicture = tga(2, 1, {255, 0, 0, 128, 128, 128});

TEST(Textures, ColoursBecomeLinearWhereTheyAreColours) {
  SceneBuilder builder = textured({{"uri", "data:image/x-tga;base64," + base64(kPicture)}});
  builder.json["materials"][0]["pbrMetallicRoughness"]["metallicRoughnessTexture"]["index"] = 0;
  const support::TemporaryFolder folder;
  const Scene scene = loadScene({folder.write("a.gltf", builder.gltf()), {}, {}, {}});
  const Material& material = scene.materials.at(0);
  ASSERT_EQ(scene.images.size(), 2U) << "one for each way to read it";
  EXPECT_EQ(material.baseColorTexture->image, material.emissionTexture->image);
  const Image& colour = scene.images.at(static_cast<std::size_t>(material.baseColorTexture->image));
  const Image& data = scene.images.at(static_cast<std::size_t>(material.metallicRoughnessTexture->image));
  EXPECT_EQ(colour.width, 2);
  EXPECT_EQ(colour.height, 1);
  EXPECT_THAT(std::vector<float>(colour.texels.begin(), colour.texels.begin() + 4), ElementsAre(1, 0, 0, 1));
  EXPECT_NEAR(colour.texels.at(4), 0.21586F, 1e-4F);
  EXPECT_NEAR(data.texels.at(4), 128 / 255.0F, 1e-6F);
}

TEST(Textures, SamplersAndTransformsAreRead) {
  SceneBuilder builder = textured({{"uri", "data:image/x-tga;base64," + base64(kPicture)}});
  builder.add("samplers", {{"magFilter", 9728}, {"wrapS", 33071}, {"wrapT", 33648}});
  builder.json["textures"][0]["sampler"] = 0;
  builder.json["meshes"][0]["primitives"][0]["attributes"]["TEXCOORD_1"] = builder.floats({0, 0, 1, 0, 0, 1}, "VEC2");
  builder.json["materials"][0]["emissiveFactor"] = {1, 0.5, 0};
  builder.json["materials"][0]["extensions"]["KHR_materials_emissive_strength"]["emissiveStrength"] = 4;
  builder.json["materials"][0]["pbrMetallicRoughness"]["baseColorTexture"]["extensions"]["KHR_texture_transform"] = {
      {"offset", {0.5, 0}}, {"scale", {2, 3}}, {"rotation", 1}, {"texCoord", 1}};
  const support::TemporaryFolder folder;
  const Scene scene = loadScene({folder.write("a.gltf", builder.gltf()), {}, {}, {}});
  const Material& material = scene.materials.at(0);
  const Texture& texture = *material.baseColorTexture;
  EXPECT_TRUE(texture.nearest);
  EXPECT_EQ(texture.wrapU, Texture::Wrap::clamp);
  EXPECT_EQ(texture.wrapV, Texture::Wrap::mirror);
  EXPECT_EQ(texture.texCoord, 1);
  EXPECT_EQ(texture.offset.x, 0.5F);
  EXPECT_EQ(texture.scale.y, 3);
  EXPECT_EQ(texture.rotation, 1);
  EXPECT_EQ(material.emission.y, 2);
}

TEST(Textures, AreFoundBesideTheSceneThenInTheSearchFolders) {
  const support::TemporaryFolder folder;
  const std::string scene = folder.write("scenes/a.gltf", textured({{"uri", "maps/red%20paint.tga"}}).gltf());
  const auto missing = [&](const std::vector<std::string>& folders) {
    return problemsOf(loadScene({scene, folders, {}, {}}), LoadProblem::Kind::missingTexture);
  };
  EXPECT_THAT(missing({folder.path("library")}), ElementsAre("Missing texture file: maps/red paint.tga"));
  folder.write("library/red paint.tga", kPicture);
  EXPECT_THAT(missing({folder.path("none"), folder.path("library")}), IsEmpty());
  EXPECT_THAT(missing({}), ElementsAre("Missing texture file: maps/red paint.tga"));
  folder.write("scenes/maps/red paint.tga", kPicture);
  EXPECT_THAT(missing({}), IsEmpty());
}

TEST(Textures, OnesThatCannotBeReadAreMissingAndTheMaterialGoesWithout) {
  const support::TemporaryFolder folder;
  folder.write("broken.png", "\x89PNG\r\n\x1A\n and then nothing");
  const Scene scene = loadScene({folder.write("a.gltf", textured({{"uri", "broken.png"}}).gltf()), {}, {}, {}});
  EXPECT_THAT(problemsOf(scene, LoadProblem::Kind::missingTexture),
              ElementsAre(HasSubstr("Texture that cannot be read: broken.png (")));
  EXPECT_FALSE(scene.materials.at(0).baseColorTexture.has_value());
}

TEST(Textures, TexturedMeshesWithoutCoordinatesAreAProblem) {
  const support::TemporaryFolder folder;
  const nlohmann::json image{{"uri", "data:image/x-tga;base64," + base64(kPicture)}};
  const Scene scene = loadScene({folder.write("a.gltf", textured(image, false).gltf()), {}, {}, {}});
  EXPECT_THAT(problemsOf(scene, LoadProblem::Kind::missingTexCoords),
              ElementsAre("Missing texture coordinates: set 0 of mesh \"Triangle\" for material \"Paint\""));
}

TEST(Plugins, AreLookedForBesideTheSceneAndInTheSearchFolders) {
  SceneBuilder builder;
  builder.addTriangle();
  builder.json["scenes"][0]["extras"]["standin"]["plugins"] = {"beside.dlt", "sub\\found.dlt", "lost.dlt"};
  const support::TemporaryFolder folder;
  folder.write("beside.dlt", "x");
  folder.write("plugins/found.dlt", "x");
  const Scene scene = loadScene({folder.write("a.gltf", builder.gltf()), {}, {}, {folder.path("plugins")}});
  EXPECT_THAT(problemsOf(scene, LoadProblem::Kind::missingPlugin), ElementsAre("Missing plug-in: lost.dlt"));
}

// A textured triangle at x that refers to further scenes.
std::string sceneAt(float x, const std::vector<std::string>& xrefs) {
  SceneBuilder builder = textured({{"uri", "data:image/x-tga;base64," + base64(kPicture)}});
  builder.json["nodes"][0]["translation"] = {x, 0, 0};
  builder.json["scenes"][0]["extras"]["standin"]["xrefs"] = xrefs;
  return builder.gltf();
}

TEST(Xrefs, AreMergedWithShiftedIndicesAndTheirOwnXrefs) {
  const support::TemporaryFolder folder;
  SceneBuilder moving = textured({{"uri", "data:image/x-tga;base64," + base64(kPicture)}});
  moving.add("nodes", {{"name", "Pivot"}, {"children", {0}}});
  moving.json["scenes"][0]["nodes"] = {1};
  moving.json["scenes"][0]["extras"]["standin"] = {{"frameRate", 99}, {"oddity", 1}};
  moving.add("animations",
             {{"samplers",
               {{{"input", moving.floats({0, 1}, "SCALAR")}, {"output", moving.floats({0, 0, 0, 0, 8, 0}, "VEC3")}}}},
              {"channels", {{{"sampler", 0}, {"target", {{"node", 1}, {"path", "translation"}}}}}}});
  folder.write("props/deep/moving.gltf", moving.gltf());
  folder.write("props/middle.gltf", sceneAt(2, {"deep/moving.gltf"}));
  const Scene scene =
      loadScene({folder.write("main.gltf", sceneAt(1, {"middle.gltf"})), {}, {folder.path("props")}, {}});

  EXPECT_THAT(scene.problems, IsEmpty());
  EXPECT_THAT(scene.warnings,
              ElementsAre("middle.gltf: deep/moving.gltf: extras.standin.oddity: unknown key, passed over"));
  EXPECT_EQ(scene.frameRate, 30) << "settings are the main scene's";
  ASSERT_EQ(scene.nodes.size(), 4U);
  EXPECT_THAT(scene.roots, ElementsAre(0, 1, 3));
  for (int i = 0; i < 3; ++i) {
    const Node& node = scene.nodes[static_cast<std::size_t>(i)];
    EXPECT_EQ(node.mesh, i);
    EXPECT_EQ(node.objectId, i + 1);
    EXPECT_EQ(scene.meshes.at(static_cast<std::size_t>(i)).primitives.at(0).material, i);
    EXPECT_EQ(scene.materials.at(static_cast<std::size_t>(i)).baseColorTexture->image, i);
  }
  EXPECT_EQ(scene.nodes[2].parent, 3);
  EXPECT_THAT(scene.nodes[3].children, ElementsAre(2));
  EXPECT_EQ(worldTransforms(scene, 2400).at(2).m[7], 4) << "the external scene's animation is kept";
}

TEST(Xrefs, ThatAreMissingAreAProblemAndTheRestIsLoaded) {
  const support::TemporaryFolder folder;
  folder.write("here.gltf", sceneAt(2, {}));
  const Scene scene = loadScene({folder.write("main.gltf", sceneAt(1, {"gone.glb", "here.gltf"})), {}, {}, {}});
  EXPECT_THAT(problemsOf(scene, LoadProblem::Kind::missingXref), ElementsAre("Missing XREF scene: gone.glb"));
  EXPECT_EQ(scene.nodes.size(), 2U);
}

TEST(Xrefs, InACircleOrBrokenAreErrorsThatNameTheFile) {
  const support::TemporaryFolder folder;
  folder.write("b.gltf", sceneAt(2, {"c.gltf"}));
  folder.write("c.gltf", sceneAt(3, {"../" + folder.path().substr(folder.path().rfind('/') + 1) + "/b.gltf"}));
  folder.write("broken.gltf", "{}");
  const auto errorOf = [&folder](const std::string& name) {
    try {
      loadScene({folder.write("a.gltf", sceneAt(1, {name})), {}, {}, {}});
    } catch (const SceneError& e) {
      return std::string(e.what());
    }
    return std::string("no error");
  };
  EXPECT_THAT(errorOf("b.gltf"), HasSubstr(folder.path("c.gltf") + ": extras.standin.xrefs: "));
  EXPECT_THAT(errorOf("b.gltf"), HasSubstr("b.gltf leads back to itself"));
  EXPECT_EQ(errorOf("broken.gltf"), folder.path("broken.gltf") + ": asset.version: expected \"2.x\", got nothing");
}

}  // namespace
}  // namespace standin::scene::test
