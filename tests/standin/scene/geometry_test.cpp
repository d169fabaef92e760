// Meshes as they come out of the loader.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scene_builder.h"
#include "standin/scene/loader.h"
#include "support/temporary_folder.h"

namespace standin::scene::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

Scene load(const std::string& content, const std::string& name = "scene.gltf") {
  const support::TemporaryFolder folder;
  return loadScene({folder.write(name, content), {}, {}, {}});
}

// A mesh of one primitive made of the given attributes and further keys.
Primitive loadPrimitive(SceneBuilder& builder, const nlohmann::json& primitive) {
  const int mesh = builder.add("meshes", {{"primitives", {primitive}}});
  builder.json["scenes"][0]["nodes"].push_back(builder.add("nodes", {{"mesh", mesh}}));
  return load(builder.gltf()).meshes.at(0).primitives.at(0);
}

void expectVec(Vec3 got, Vec3 expected) {
  EXPECT_NEAR(got.x, expected.x, 1e-6F);
  EXPECT_NEAR(got.y, expected.y, 1e-6F);
  EXPECT_NEAR(got.z, expected.z, 1e-6F);
}

TEST(Geometry, TextAndBinaryFilesGiveTheSameTriangle) {
  SceneBuilder builder;
  builder.addTriangle();
  for (const Scene& scene : {load(builder.gltf()), load(builder.glb(), "scene.glb")}) {
    const Primitive& p = scene.meshes.at(0).primitives.at(0);
    EXPECT_THAT(p.indices, ElementsAre(0, 1, 2));
    expectVec(p.positions.at(1), {1, 0, 0});
    expectVec(p.positions.at(2), {0, 1, 0});
    EXPECT_EQ(scene.nodes.at(0).name, "Triangle");
    EXPECT_EQ(scene.nodes.at(0).objectId, 1);
    EXPECT_THAT(scene.warnings, IsEmpty());
  }
}

TEST(Geometry, StripsAndFansBecomeTrianglesOfTheSameWinding) {
  const struct {
    int mode;
    std::vector<std::uint32_t> expected;
  } cases[] = {{4, {0, 1, 2}}, {5, {0, 1, 2, 1, 3, 2, 2, 3, 4}}, {6, {1, 2, 0, 2, 3, 0, 3, 4, 0}}};
  for (const auto& c : cases) {
    SceneBuilder builder;
    const int positions = builder.floats({0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0, 0, 2, 0}, "VEC3");
    const int normals = builder.floats(std::vector<float>(15, 1.0F), "VEC3");
    EXPECT_EQ(loadPrimitive(builder, {{"attributes", {{"POSITION", positions}, {"NORMAL", normals}}}, {"mode", c.mode}})
                  .indices,
              c.expected)
        << "mode " << c.mode;
  }
}

TEST(Geometry, PointsAndLinesArePassedOverWithAWarning) {
  SceneBuilder builder;
  builder.addTriangle();
  builder.json["meshes"][0]["primitives"][0]["mode"] = 1;
  const Scene scene = load(builder.gltf());
  EXPECT_THAT(scene.meshes.at(0).primitives, IsEmpty());
  EXPECT_THAT(scene.warnings, ElementsAre("meshes[0].primitives[0]: points and lines are not drawn"));
}

TEST(Geometry, MissingNormalsAreFlatAndSplitSharedVertices) {
  SceneBuilder builder;
  // Two triangles of a roof that share an edge.
  const int positions = builder.floats({0, 0, 0, 0, 0, -1, 1, 0, 0, 0, 1, 0}, "VEC3");
  const int colors = builder.floats({1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 1}, "VEC3");
  const Primitive p = loadPrimitive(builder, {{"attributes", {{"POSITION", positions}, {"COLOR_0", colors}}},
                                              {"indices", builder.indices({0, 2, 1, 0, 2, 3})}});
  ASSERT_EQ(p.positions.size(), 6U);
  for (int i = 0; i < 3; ++i) expectVec(p.normals.at(static_cast<std::size_t>(i)), {0, 1, 0});
  for (int i = 3; i < 6; ++i) expectVec(p.normals.at(static_cast<std::size_t>(i)), {0, 0, 1});
  expectVec(p.positions.at(4), {1, 0, 0});
  EXPECT_EQ(p.colors.at(4).z, 1);
  EXPECT_EQ(p.colors.at(4).w, 1);
}

TEST(Geometry, NormalsWithoutDirectionTakeThatOfTheirTriangles) {
  SceneBuilder builder;
  const int positions = builder.floats({0, 0, 0, 1, 0, 0, 0, 1, 0}, "VEC3");
  const int normals = builder.floats({0, 0, 0, 0, 0, 2, 0, 0, 1}, "VEC3");
  const Primitive p = loadPrimitive(builder, {{"attributes", {{"POSITION", positions}, {"NORMAL", normals}}}});
  for (const Vec3& n : p.normals) expectVec(n, {0, 0, 1});
}

TEST(Geometry, ReadsStridesOffsetsAndNormalizedIntegers) {
  SceneBuilder builder;
  // Interleaved: position (3 floats), then a byte normal padded to 4; one leading word that the offset skips.
  std::string bytes(4, '\x7F');
  for (int v = 0; v < 3; ++v) {
    const float position[3] = {static_cast<float>(v == 1), static_cast<float>(v == 2), 0};
    bytes.append(reinterpret_cast<const char*>(position), sizeof(position));
    bytes.append({0, 0, 127, 0});
  }
  const int view = builder.viewOfBytes(bytes);
  builder.json["bufferViews"][0]["byteStride"] = 16;
  const int positions = builder.accessor(view, kFloat, "VEC3", 3);
  builder.json["accessors"][0]["byteOffset"] = 4;
  const int normals = builder.accessor(view, kByte, "VEC3", 3);
  builder.json["accessors"][1]["byteOffset"] = 16;
  builder.json["accessors"][1]["normalized"] = true;
  const int uv = builder.accessor(builder.view<std::uint16_t>({0, 65535, 65535, 0, 0, 0}), kUnsignedShort, "VEC2", 3);
  builder.json["accessors"][2]["normalized"] = true;
  const Primitive p =
      loadPrimitive(builder, {{"attributes", {{"POSITION", positions}, {"NORMAL", normals}, {"TEXCOORD_0", uv}}}});
  expectVec(p.positions.at(1), {1, 0, 0});
  expectVec(p.positions.at(2), {0, 1, 0});
  expectVec(p.normals.at(2), {0, 0, 1});
  EXPECT_EQ(p.uv0.at(0).y, 1);
  EXPECT_EQ(p.uv0.at(1).x, 1);
}

TEST(Geometry, SparseAccessorsReplaceSingleElements) {
  SceneBuilder builder;
  const int positions = builder.floats({0, 0, 0, 1, 0, 0, 9, 9, 9}, "VEC3");
  const int which = builder.view<std::uint8_t>({2});
  const int values = builder.view<float>({0, 1, 0});
  builder.json["accessors"][0]["sparse"] = {{"count", 1},
                                            {"indices", {{"bufferView", which}, {"componentType", kUnsignedByte}}},
                                            {"values", {{"bufferView", values}}}};
  expectVec(loadPrimitive(builder, {{"attributes", {{"POSITION", positions}}}}).positions.at(2), {0, 1, 0});
}

TEST(Geometry, TangentsAreMadeForNormalMapsAndFollowMirroredCoordinates) {
  for (const float mirrored : {1.0F, -1.0F}) {
    SceneBuilder builder;
    const int positions = builder.floats({0, 0, 0, 1, 0, 0, 0, 1, 0}, "VEC3");
    // v runs down the image: the upper corner has the smaller v.
    const int uv = builder.floats({0, 1, mirrored, 1, 0, 0}, "VEC2");
    const std::string picture = base64(tga(1, 1, {128, 128, 255}));
    builder.add("images", {{"uri", "data:image/x-tga;base64," + picture}});
    builder.add("textures", {{"source", 0}});
    builder.add("materials", {{"normalTexture", {{"index", 0}}}});
    const Primitive p =
        loadPrimitive(builder, {{"attributes", {{"POSITION", positions}, {"TEXCOORD_0", uv}}}, {"material", 0}});
    ASSERT_EQ(p.tangents.size(), 3U);
    expectVec({p.tangents[0].x, p.tangents[0].y, p.tangents[0].z}, {mirrored, 0, 0});
    // cross((0,0,1), tangent) * w is up in both cases.
    EXPECT_EQ(p.tangents[0].w, mirrored);
  }
}

TEST(Geometry, OnlyWhatTheDefaultSceneReachesIsLoaded) {
  SceneBuilder builder;
  builder.addTriangle();                                        // node 0, scene 0
  builder.add("nodes", {{"name", "Leaf"}, {"mesh", 0}});        // node 1
  builder.add("nodes", {{"name", "Root"}, {"children", {1}}});  // node 2
  builder.add("scenes", {{"nodes", {2}}});
  builder.json["scene"] = 1;
  const Scene scene = load(builder.gltf());
  ASSERT_EQ(scene.nodes.size(), 2U);
  EXPECT_EQ(scene.nodes[0].name, "Leaf");
  EXPECT_EQ(scene.nodes[0].parent, 1);
  EXPECT_THAT(scene.nodes[1].children, ElementsAre(0));
  EXPECT_THAT(scene.roots, ElementsAre(1));
}

TEST(Geometry, CamerasAndLightsStandOnTheirNodes) {
  SceneBuilder builder;
  builder.add("cameras", {{"name", "Lens"}, {"type", "perspective"}, {"perspective", {{"yfov", 0.5}, {"znear", 0.1}}}});
  builder.add("cameras",
              {{"type", "orthographic"}, {"orthographic", {{"xmag", 1}, {"ymag", 1}, {"znear", 0.1}, {"zfar", 10}}}});
  builder.json["extensions"]["KHR_lights_punctual"]["lights"] = {
      {{"type", "spot"}, {"intensity", 30}, {"color", {1, 0.5, 0}}, {"spot", {{"outerConeAngle", 0.6}}}}};
  builder.add("nodes", {{"camera", 0}});
  builder.add("nodes", {{"camera", 1}, {"name", "Flat"}});
  builder.add("nodes", {{"extensions", {{"KHR_lights_punctual", {{"light", 0}}}}}, {"camera", 0}, {"name", "Both"}});
  builder.json["scenes"][0]["nodes"] = {0, 1, 2};
  const Scene scene = load(builder.gltf());
  EXPECT_EQ(scene.nodes.at(0).name, "Lens");
  EXPECT_FLOAT_EQ(scene.cameras.at(0).yfov, 0.5F);
  EXPECT_EQ(scene.nodes.at(1).camera, kNone);
  EXPECT_EQ(scene.nodes.at(2).camera, 1) << "every camera node has a camera of its own";
  const Light& light = scene.lights.at(static_cast<std::size_t>(scene.nodes.at(2).light));
  EXPECT_EQ(light.kind, Light::Kind::spot);
  EXPECT_EQ(light.intensity, 30);
  EXPECT_FLOAT_EQ(light.outerCone, 0.6F);
  EXPECT_THAT(scene.warnings, ElementsAre(HasSubstr("orthographic cameras are passed over")));
  EXPECT_EQ(scene.viewports.at(0).camera, "Lens");
}

TEST(Geometry, TellsScenesFromOtherFilesByTheirBeginning) {
  SceneBuilder builder;
  builder.addTriangle();
  const std::string glb = builder.glb();
  const struct {
    std::string content;
    bool expected;
  } cases[] = {{builder.gltf(), true},
               {glb, true},
               {"glTF" + std::string("\1\0\0\0", 4) + glb.substr(8), false},
               {R"({"asset": {"version": "1.0"}})", false},
               {R"({"extras": {"version": "2.0"}, "asset": {"extras": {"version": "2.0"}, "version": "2.1"}})", true},
               {R"({"extras": {"asset": {"version": "2.0"}}})", false},
               {R"([{"asset": {"version": "2.0"}}])", false},
               {R"({"asset": {"ver)", false},
               {"glTF", false},
               {"", false}};
  const support::TemporaryFolder folder;
  for (const auto& c : cases) EXPECT_EQ(looksLikeScene(folder.write("x", c.content)), c.expected) << c.content;
  EXPECT_FALSE(looksLikeScene(folder.path("none")));
  EXPECT_FALSE(looksLikeScene(folder.path()));
}

}  // namespace
}  // namespace standin::scene::test
