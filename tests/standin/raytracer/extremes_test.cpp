// Scenes that load but make no sense: a picture comes out, and every number in it is finite.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "scenes.h"

namespace standin::raytracer::testing {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

struct Case {
  const char* what;
  std::function<void(Scene&, FrameRequest&)> spoil;
};

scene::Primitive& sphere(Scene& scene) { return scene.meshes[1].primitives[0]; }

const Case kCases[] = {
    {"nothing", [](Scene& s, FrameRequest&) { s = Scene(); }},
    {"lights alone",
     [](Scene& s, FrameRequest&) {
       s.meshes.clear();
       for (auto& n : s.nodes) n.mesh = -1;
     }},
    {"a mesh without primitives", [](Scene& s, FrameRequest&) { s.meshes[0].primitives.clear(); }},
    {"a primitive without triangles", [](Scene& s, FrameRequest&) { sphere(s).indices.clear(); }},
    {"all triangles without area",
     [](Scene& s, FrameRequest&) {
       for (auto& i : sphere(s).indices) i = 0;
     }},
    {"needles",
     [](Scene& s, FrameRequest&) {
       for (auto& p : sphere(s).positions) p.x = 0, p.z = 1e-20F * p.z;
     }},
    {"positions that are no numbers",
     [](Scene& s, FrameRequest&) {
       for (std::size_t i = 0; i < 500; ++i) sphere(s).positions[i * 3].x = kNan;
     }},
    {"endless positions", [](Scene& s, FrameRequest&) { sphere(s).positions[700].y = kInf; }},
    {"normals that are none",
     [](Scene& s, FrameRequest&) {
       for (auto& n : sphere(s).normals) n = {kNan, 0, 0};
     }},
    {"normals without length",
     [](Scene& s, FrameRequest&) {
       for (auto& n : sphere(s).normals) n = {0, 0, 0};
     }},
    {"no normals", [](Scene& s, FrameRequest&) { sphere(s).normals.clear(); }},
    {"texture coordinates that are none",
     [](Scene& s, FrameRequest&) {
       for (auto& uv : s.meshes[0].primitives[0].uv0) uv = {kNan, kInf};
     }},
    {"huge texture coordinates",
     [](Scene& s, FrameRequest&) {
       for (auto& uv : s.meshes[0].primitives[0].uv0) uv = {1e30F * uv.x, -1e30F};
     }},
    {"a flattened node",
     [](Scene& s, FrameRequest&) {
       s.nodes[1].matrix = scene::fromTranslationRotationScale({0, 0, -3}, {}, {1, 0, 1});
     }},
    {"a node without size", [](Scene& s, FrameRequest&) { s.nodes[1].matrix->m = {}; }},
    {"a node that is nowhere", [](Scene& s, FrameRequest&) { s.nodes[1].matrix->m[3] = kNan; }},
    {"a huge node",
     [](Scene& s, FrameRequest&) {
       s.nodes[1].matrix = scene::fromTranslationRotationScale({0, 0, 0}, {}, {1e15F, 1e15F, 1e15F});
     }},
    {"a tiny node",
     [](Scene& s, FrameRequest&) {
       s.nodes[1].matrix = scene::fromTranslationRotationScale({0, 0, -3}, {}, {1e-12F, 1e-12F, 1e-12F});
     }},
    {"blinding lights",
     [](Scene& s, FrameRequest&) {
       for (auto& l : s.lights) l.intensity = 3e38F;
     }},
    {"lights that are none",
     [](Scene& s, FrameRequest&) {
       s.lights[0].intensity = kNan, s.lights[1].outerCone = kNan, s.lights[2].color.x = kInf;
     }},
    {"cones the wrong way round",
     [](Scene& s, FrameRequest&) { s.lights[1].innerCone = 1, s.lights[1].outerCone = 0.1F; }},
    {"a light on a surface",
     [](Scene& s, FrameRequest&) {
       s.nodes[6].matrix = at({0, -1, -3});
     }},
    {"colours that are none",
     [](Scene& s, FrameRequest&) {
       for (auto& m : s.materials) m.baseColor = {kNan, -1, kInf, kNan}, m.emission = {kInf, kNan, -1};
     }},
    {"roughness out of range",
     [](Scene& s, FrameRequest&) {
       for (auto& m : s.materials) m.roughness = -3, m.metallic = 7;
     }},
    {"no roughness at all",
     [](Scene& s, FrameRequest&) {
       for (auto& m : s.materials) m.roughness = 0;
     }},
    {"images that are not there", [](Scene& s, FrameRequest&) { s.images[0].texels.resize(3); }},
    {"textures of no image", [](Scene& s, FrameRequest&) { s.materials[0].baseColorTexture->image = 99; }},
    {"materials that are not there",
     [](Scene& s, FrameRequest&) {
       for (auto& m : s.meshes) m.primitives[0].material = 55;
     }},
    {"a hundred panes",
     [](Scene& s, FrameRequest&) {
       for (int i = 0; i < 100; ++i) addNode(s, at({0, 0, -1.0F - 0.01F * static_cast<float>(i)}), 5);
     }},
    {"a singular view", [](Scene&, FrameRequest& r) { r.view.worldToCamera.m = {}; }},
    {"a view that is none", [](Scene&, FrameRequest& r) { r.view.worldToCamera.m[5] = kNan; }},
    {"a field of view of nothing", [](Scene&, FrameRequest& r) { r.view.fov = 0; }},
    {"a field of view of everything", [](Scene&, FrameRequest& r) { r.view.fov = 3.1415927F; }},
    {"an eye on a surface",
     [](Scene&, FrameRequest& r) {
       r.view = viewFrom({0, -1, -3});
     }},
    {"an eye far away",
     [](Scene&, FrameRequest& r) {
       r.view = viewFrom({1e20F, 0, 0});
     }},
    {"a time far away", [](Scene&, FrameRequest& r) { r.ticks = 1e300; }},
};

TEST(Extremes, EveryNumberIsFinite) {
  const std::vector<ElementType> elements = {ElementType::beauty,   ElementType::alpha,       ElementType::depth,
                                             ElementType::normal,   ElementType::albedo,      ElementType::position,
                                             ElementType::objectId, ElementType::directLight, ElementType::emission};
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.what);
    Scene scene = mixedScene();
    FrameRequest r = request(24, 18, viewFrom({0, 0.6F, 1}));
    c.spoil(scene, r);
    Renderer renderer(scene);
    const auto pictures = renderElements(renderer, r, elements);
    for (const Picture& picture : pictures) {
      for (const float value : picture.pixels) ASSERT_TRUE(std::isfinite(value));
    }
    for (std::size_t i = 3; i < pictures[1].pixels.size(); i += 4) {
      ASSERT_GE(pictures[1].pixels[i], 0);
      ASSERT_LE(pictures[1].pixels[i], 1);
    }
  }
}

// One bad object must not take the others from the picture.
TEST(Extremes, TheRestOfTheSceneIsStillThere) {
  for (const float bad : {kNan, 0.0F}) {
    Scene scene;
    addQuad(scene, at({0, 0, -2}), glowing({1, 1, 1}), 4);
    const int node = addQuad(scene, at({0, 0, -1}), matt({1, 1, 1}));
    scene.nodes[static_cast<std::size_t>(node)].matrix->m[0] = bad;
    EXPECT_EQ(renderElement(scene, request(3, 3, viewFrom({0, 0, 0})), ElementType::emission).at(1, 1)[0], 1);
  }
}

TEST(Extremes, ManyFramesOfAMovingSceneStayTheSame) {
  Scene scene = mixedScene();
  Renderer renderer(scene);
  const FrameRequest r = request(16, 12, viewFrom({0, 0.6F, 1}));
  const Picture first = renderElements(renderer, r, {ElementType::beauty}).front();
  const scene::Transform home = *scene.nodes[1].matrix;
  for (int i = 0; i < 300; ++i) {
    scene.nodes[1].matrix = at({static_cast<float>(i % 7) - 3, 0, -3});
    scene.nodes[2].visible = i % 3 != 0;  // changes the set of instances, not only their places
    renderElements(renderer, r, {ElementType::beauty});
  }
  scene.nodes[1].matrix = home;
  scene.nodes[2].visible = true;
  EXPECT_TRUE(first.pixels == renderElements(renderer, r, {ElementType::beauty}).front().pixels);
}

}  // namespace
}  // namespace standin::raytracer::testing
