// Files that must be refused, and in what words.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <random>

#include "scene_builder.h"
#include "standin/scene/loader.h"
#include "support/temporary_folder.h"

namespace standin::scene::test {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

// A small scene with something of everything: accessors 0 positions, 1 indices, 2 key times, 3 key values.
SceneBuilder richScene() {
  SceneBuilder builder;
  const int positions = builder.floats({0, 0, 0, 1, 0, 0, 0, 1, 0}, "VEC3");
  const int indices = builder.indices({0, 1, 2});
  const int times = builder.floats({0, 1}, "SCALAR");
  const int values = builder.floats({0, 0, 0, 1, 0, 0}, "VEC3");
  builder.add("materials", {{"pbrMetallicRoughness", {{"baseColorTexture", {{"index", 0}}}}}});
  builder.add("images", {{"bufferView", builder.viewOfBytes(tga(1, 1, {255, 255, 255}))}});
  builder.add("samplers", {{"wrapS", 10497}});
  builder.add("textures", {{"source", 0}, {"sampler", 0}});
  builder.add("meshes", {{"primitives",
                          {{{"attributes", {{"POSITION", positions}, {"TEXCOORD_0", positions}}},
                            {"indices", indices},
                            {"material", 0}}}}});
  builder.json["meshes"][0]["primitives"][0]["attributes"].erase("TEXCOORD_0");
  builder.add("cameras", {{"type", "perspective"}, {"perspective", {{"yfov", 0.5}, {"znear", 0.1}}}});
  builder.add("nodes", {{"mesh", 0}, {"children", {1}}, {"translation", {0, 0, 0}}});
  builder.add("nodes", {{"camera", 0}, {"extensions", {{"KHR_lights_punctual", {{"light", 0}}}}}});
  builder.json["extensions"]["KHR_lights_punctual"]["lights"] = {{{"type", "point"}}};
  builder.json["scenes"][0]["nodes"] = {0};
  builder.add("animations", {{"samplers", {{{"input", times}, {"output", values}}}},
                             {"channels", {{{"sampler", 0}, {"target", {{"node", 0}, {"path", "translation"}}}}}}});
  return builder;
}

std::string errorOf(const std::string& content) {
  const support::TemporaryFolder folder;
  const std::string path = folder.write("bad.gltf", content);
  try {
    loadScene({path, {}, {}, {}});
  } catch (const SceneError& e) {
    EXPECT_THAT(e.what(), StartsWith(path + ": "));
    return std::string(e.what()).substr(path.size() + 2);
  }
  return "no error";
}

TEST(Malformed, TheSceneThatTheCasesBreakIsWhole) { EXPECT_EQ(errorOf(richScene().gltf()), "no error"); }

struct Break {
  std::string pointer;  // what is changed, as a JSON pointer
  std::string value;    // to what; empty: removed
  std::string error;

  friend void PrintTo(const Break& b, std::ostream* out) { *out << b.pointer << " = " << b.value; }
};

class MalformedScene : public ::testing::TestWithParam<Break> {};

TEST_P(MalformedScene, IsRefusedWithPlaceExpectationAndFinding) {
  SceneBuilder builder = richScene();
  const nlohmann::json::json_pointer pointer(GetParam().pointer);
  if (GetParam().value.empty())
    builder.json[pointer.parent_pointer()].erase(pointer.back());
  else
    builder.json[pointer] = nlohmann::json::parse(GetParam().value);
  EXPECT_EQ(errorOf(builder.gltf()), GetParam().error);
}

const Break kBreaks[] = {
    // the document
    {"/asset/version", R"("1.0")", R"(asset.version: expected "2.x", got "1.0")"},
    {"/asset", "", R"(asset.version: expected "2.x", got nothing)"},
    {"/extensionsRequired", R"(["KHR_draco_mesh_compression"])",
     R"(extensionsRequired: the extension "KHR_draco_mesh_compression" is not supported)"},
    {"/animations", R"({"a": 1})", R"(animations: expected a list of objects, got {"a":1})"},
    {"/scene", "3", "scene: expected an index below 1, got 3"},
    {"/nodes/0/mesh", "1", "nodes[0].mesh: expected an index below 1, got 1"},
    {"/nodes/0/mesh", R"("a mesh")", R"(nodes[0].mesh: expected an index below 1, got "a mesh")"},
    {"/nodes/0/mesh", "-1", "nodes[0].mesh: expected an index below 1, got -1"},
    {"/nodes/1/camera", "99999999999", "nodes[1].camera: expected an index below 1, got 99999999999"},
    {"/nodes/1/extensions/KHR_lights_punctual/light", "1",
     "nodes[1].extensions.KHR_lights_punctual.light: expected an index below 1, got 1"},
    {"/nodes/0/translation", "[0, 1]", "nodes[0].translation: expected a list of 3 numbers, got [0,1]"},
    {"/nodes/0/translation", "[0, 1e300, 0]", "nodes[0].translation: expected a list of 3 numbers, got [0,1e+300,0]"},
    {"/nodes/0/rotation", "[0, 0, 0, 0]", "nodes[0].rotation: expected a quaternion of unit length, got all zeros"},
    {"/textures/0/source", "7", "textures[0].source: expected an index below 1, got 7"},
    {"/materials/0/pbrMetallicRoughness/baseColorTexture", "{}",
     "materials[0].pbrMetallicRoughness.baseColorTexture.index: expected an index below 1, got nothing"},
    {"/materials/0/alphaMode", R"("GLASS")", R"(materials[0].alphaMode: expected OPAQUE, MASK or BLEND, got "GLASS")"},
    {"/samplers/0/wrapS", "1", "samplers[0].wrapS: expected 10497, 33071 or 33648, got 1"},
    {"/cameras/0/perspective/yfov", "3.5",
     "cameras[0].perspective.yfov: expected an angle above 0 and below pi, got 3.5"},
    {"/extensions/KHR_lights_punctual/lights/0/type", R"("moon")",
     R"(extensions.KHR_lights_punctual.lights[0].type: expected directional, point or spot, got "moon")"},
    // the tree
    {"/nodes/1/children", "[0]", "nodes[0]: expected a tree, got a node below one of its own children"},
    {"/nodes/1/children", "[1]", "nodes[1]: expected one parent, got nodes[0] and nodes[1]"},
    {"/scenes/0/nodes", "[0, 1]", "scenes[0].nodes: expected nodes without a parent, got nodes[1]"},
    {"/scenes/0/nodes", "[0, 0]", "scenes[0].nodes: expected every node once, got nodes[0] twice"},
    // geometry
    {"/meshes/0/primitives/0/attributes", "{}",
     "meshes[0].primitives[0].attributes.POSITION: expected an index, got nothing"},
    {"/meshes/0/primitives/0/attributes/POSITION", "4",
     "meshes[0].primitives[0].attributes.POSITION: expected an index below 4, got 4"},
    {"/meshes/0/primitives/0/attributes/NORMAL", "3",
     "meshes[0].primitives[0].NORMAL: expected 3 elements as POSITION, got 2"},
    {"/accessors/0/count", "2", "meshes[0].primitives[0].indices: expected indices below 2, got 2"},
    {"/accessors/0/count", "4",
     "accessors[0] (meshes[0].primitives[0].POSITION): expected its end within bufferViews[0]'s 36 bytes, got 48"},
    {"/accessors/0/byteOffset", "4",
     "accessors[0] (meshes[0].primitives[0].POSITION): expected its end within bufferViews[0]'s 36 bytes, got 40"},
    {"/accessors/0/type", R"("VEC2")",
     "accessors[0] (meshes[0].primitives[0].POSITION): expected 3 numbers an element, got 2"},
    {"/accessors/0/componentType", "5124",
     "accessors[0] (meshes[0].primitives[0].POSITION).componentType: expected 5120 to 5123, 5125 or 5126, got 5124"},
    {"/accessors/0/count", "300000000", "accessors[0].count: expected an integer from 0 to 268435456, got 300000000"},
    {"/accessors/1/componentType", "5122",
     "accessors[1] (meshes[0].primitives[0].indices).componentType: expected 5121, 5123 or 5125, got 5122"},
    {"/bufferViews/0/byteStride", "8", "bufferViews[0].byteStride: expected at least the element's 12 bytes, got 8"},
    {"/bufferViews/0/byteLength", "1000", "bufferViews[0]: expected its end within the buffer's 100 bytes, got 1000"},
    {"/bufferViews/4/byteOffset", "5000", "bufferViews[4]: expected its end within the buffer's 100 bytes, got 5021"},
    {"/accessors/0/sparse",
     R"({"count": 1, "indices": {"bufferView": 1, "byteOffset": 4, "componentType": 5125}, "values": {"bufferView": 0}})",
     "accessors[0] (meshes[0].primitives[0].POSITION).sparse.indices: "
     "expected its end within bufferViews[1]'s 6 bytes, got 8"},
    {"/accessors/0/sparse",
     R"({"count": 1, "indices": {"bufferView": 2, "byteOffset": 4, "componentType": 5125}, "values": {"bufferView": 0}})",
     "accessors[0] (meshes[0].primitives[0].POSITION).sparse.indices: expected indices below 3, got 1065353216"},
    // animation
    {"/animations/0/channels/0/sampler", "1", "animations[0].channels[0].sampler: expected an index below 1, got 1"},
    {"/animations/0/channels/0/target/path", R"("colour")",
     R"(animations[0].channels[0].target.path: expected translation, rotation, scale or weights, got "colour")"},
    {"/animations/0/samplers/0/interpolation", R"("SMOOTH")",
     R"(animations[0].samplers[0].interpolation: expected LINEAR, STEP or CUBICSPLINE, got "SMOOTH")"},
    {"/animations/0/samplers/0/interpolation", R"("CUBICSPLINE")",
     "animations[0].samplers[0].output: expected 18 numbers for 2 keys, got 6"},
    {"/accessors/2/bufferView", "1",
     "accessors[2] (animations[0].samplers[0].input): expected its end within bufferViews[1]'s 6 bytes, got 8"},
    {"/accessors/2/bufferView", "3", "animations[0].samplers[0].input: expected rising times, got 0.0 before 0.0"},
    {"/nodes/0/matrix", "[1,0,0,0, 0,1,0,0, 0,0,1,0, 0,0,0,1]",
     "animations[0].channels[0].target: expected a node with translation, rotation and scale, got nodes[0], which has "
     "a matrix"},
};

INSTANTIATE_TEST_SUITE_P(Table, MalformedScene, ::testing::ValuesIn(kBreaks));

TEST(Malformed, NumbersThatAreNotFiniteAreRefused) {
  SceneBuilder builder;
  builder.addTriangle();
  builder.json["accessors"][0]["bufferView"] =
      builder.view<float>({0, 0, 0, 1, 0, 0, 0, std::numeric_limits<float>::quiet_NaN(), 0});
  EXPECT_THAT(errorOf(builder.gltf()), HasSubstr("expected finite numbers"));
}

TEST(Malformed, BuffersMustBeThereAndLongEnough) {
  SceneBuilder builder;
  builder.addTriangle();
  const struct {
    std::string buffer, error;
  } cases[] = {
      {R"({"byteLength": 36})", "buffers[0].uri: expected text, got nothing"},
      {R"({"byteLength": 36, "uri": "data:application/octet-stream;base64,AAAA"})",
       "buffers[0]: expected 36 bytes, got 3"},
      {R"({"byteLength": 36, "uri": "data:application/octet-stream;base64,AA\u0001A"})",
       R"(buffers[0].uri: expected base64 data, got the character "\u0001")"},
      {R"({"byteLength": 36, "uri": "data:text/plain,hello"})", "buffers[0].uri: expected base64 data"},
  };
  for (const auto& c : cases) {
    builder.json["buffers"] = {nlohmann::json::parse(c.buffer)};
    EXPECT_EQ(errorOf(builder.gltf()), c.error);
  }
  builder.json["buffers"] = {{{"byteLength", 36}, {"uri", "gone%20away.bin"}}};
  EXPECT_THAT(errorOf(builder.gltf()), StartsWith("buffers[0].uri: cannot read the file "));
  EXPECT_THAT(errorOf(builder.gltf()), EndsWith("/gone away.bin"));
}

TEST(Malformed, TextThatIsNoJsonOrTooDeepIsRefused) {
  EXPECT_THAT(errorOf("{\"asset\": "), StartsWith("expected JSON: "));
  EXPECT_THAT(errorOf(std::string("{\"asset\": {\"version\": \"\xFF\"}}")), StartsWith("expected JSON: "));
  EXPECT_EQ(errorOf(std::string(100000, '[')), "expected JSON at most 100 levels deep");
}

// Cut or changed anywhere, a file is loaded or refused, and no sanitizer complains.
TEST(Malformed, DamagedBinaryFilesNeverGetPastTheChecks) {
  const std::string whole = richScene().glb();
  EXPECT_EQ(errorOf(whole), "no error");
  for (std::size_t length = 0; length < whole.size(); length += 7)
    EXPECT_NE(errorOf(whole.substr(0, length)), "no error") << length << " bytes";
  std::mt19937 random(1);
  int refused = 0;
  for (int i = 0; i < 500; ++i) {
    std::string damaged = whole;
    for (int k = 0; k < 2; ++k) damaged[random() % damaged.size()] = static_cast<char>(random());
    refused += errorOf(damaged) != "no error";
  }
  EXPECT_GT(refused, 100);
}

}  // namespace
}  // namespace standin::scene::test
