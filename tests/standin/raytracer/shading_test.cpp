// Radiance against closed forms. The camera stands before a wall and looks straight at it; the middle pixel is
// compared.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "scenes.h"

namespace standin::raytracer::testing {
namespace {

constexpr float kPi = 3.14159265F;

// The middle of a wall at z = -2, seen from the origin in one centred sample.
FrameRequest middleSample() {
  FrameRequest r = request(3, 3, viewFrom({0, 0, 0}));
  r.samples = 1;
  return r;
}

Vec3 middle(const Scene& scene, ElementType element) {
  const Picture picture = renderElement(scene, middleSample(), element);
  const float* p = picture.at(1, 1);
  return {p[0], p[1], p[2]};
}

void expectColor(Vec3 actual, Vec3 expected, float tolerance) {
  EXPECT_NEAR(actual.x, expected.x, tolerance * expected.x + 1e-6F);
  EXPECT_NEAR(actual.y, expected.y, tolerance * expected.y + 1e-6F);
  EXPECT_NEAR(actual.z, expected.z, tolerance * expected.z + 1e-6F);
}

// A rough non-metal in perpendicular light of irradiance E, seen perpendicularly: ((1 - 0.04) c + 0.04 / 4) E / pi.
Vec3 litWall(Vec3 color, float irradiance) { return (color * 0.96F + Vec3{0.01F, 0.01F, 0.01F}) * (irradiance / kPi); }

const Vec3 kColor{0.8F, 0.4F, 0.2F};

Scene wall(const scene::Material& material) {
  Scene scene;
  addQuad(scene, at({0, 0, -2}), material, 4);
  return scene;
}

TEST(Shading, DirectLightOfOneLightOnAWall) {
  const float slant = 0.6F;  // radians off the wall's normal
  scene::Light spot = bulb(10);
  spot.kind = scene::Light::Kind::spot;
  spot.innerCone = 0.2F;
  spot.outerCone = 0.4F;
  scene::Light ranged = bulb(10);
  ranged.range = 4;
  const auto cone = [](float angle) {
    const float t = (std::cos(angle) - std::cos(0.4F)) / (std::cos(0.2F) - std::cos(0.4F));
    return t * t;
  };
  struct Case {
    const char* what;
    scene::Light light;
    scene::Transform placement;
    float irradiance;
  };
  const Vec3 behindCamera{0, 0, 1};  // 3 m from the wall
  const auto turned = [](float angle) { return Vec3{std::tan(angle) * 3, 0, -2}; };
  const Case cases[] = {
      {"sun", sun(3), at({0, 0, 0}), 3},
      {"sun's place does not matter", sun(3), at({5, 6, 7}), 3},
      {"bulb: inverse square", bulb(18), at(behindCamera), 2},
      {"bulb within its range", ranged, at(behindCamera), 10.0F / 9 * (1 - 81.0F / 256)},
      {"bulb beyond its range", ranged, at({0, 0, 2.5F}), 0},
      {"spot: full in the inner cone", spot, scene::lookAt(behindCamera, turned(0.1F)), 10.0F / 9},
      {"spot: falling off between the cones", spot, scene::lookAt(behindCamera, turned(0.3F)), 10.0F / 9 * cone(0.3F)},
      {"spot: dark outside", spot, scene::lookAt(behindCamera, turned(0.45F)), 0},
      {"light from behind the wall", bulb(10), at({0, 0, -3}), 0},
      {"node scale does not matter", bulb(18), scene::fromTranslationRotationScale(behindCamera, {}, {7, 7, 7}), 2},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Scene scene = wall(matt(kColor));
    addLight(scene, c.light, c.placement);
    expectColor(middle(scene, ElementType::directLight), litWall(kColor, c.irradiance), 1e-3F);
  }
  // Slanting light: the matt part follows the cosine.
  Scene scene = wall(matt(kColor));
  addLight(scene, sun(1), scene::lookAt({std::sin(slant), 0, std::cos(slant)}, {0, 0, 0}));
  const Vec3 slanting = middle(scene, ElementType::directLight);
  EXPECT_NEAR((slanting.x - slanting.y) / (0.96F * (kColor.x - kColor.y)), std::cos(slant) / kPi, 2e-3F);
}

TEST(Shading, LightsAddUpAndHiddenOnesDoNot) {
  Scene scene = wall(matt(kColor));
  addLight(scene, sun(1), at({0, 0, 0}));
  addLight(scene, sun(2), at({0, 0, 0}));
  scene.nodes[static_cast<std::size_t>(addLight(scene, sun(4), at({0, 0, 0})))].visible = false;
  expectColor(middle(scene, ElementType::directLight), litWall(kColor, 3), 1e-3F);
}

TEST(Shading, ShadowsOfOpaqueMaskedAndTranslucentSurfaces) {
  struct Case {
    const char* what;
    std::function<void(scene::Material&)> change;
    float passing;
  };
  const Case cases[] = {
      {"opaque", [](scene::Material&) {}, 0},
      {"opaque whatever its alpha", [](scene::Material& m) { m.baseColor.w = 0; }, 0},
      {"translucent", [](scene::Material& m) { m.alphaMode = scene::Material::Alpha::blend, m.baseColor.w = 0.25F; },
       0.75F},
      {"masked away", [](scene::Material& m) { m.alphaMode = scene::Material::Alpha::mask, m.baseColor.w = 0.4F; }, 1},
      {"masked in", [](scene::Material& m) { m.alphaMode = scene::Material::Alpha::mask, m.baseColor.w = 0.6F; }, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Scene scene = wall(matt(kColor));
    scene::Material blocker = matt({1, 1, 1});
    c.change(blocker);
    addQuad(scene, at({0, 0, 2}), blocker);  // behind the camera, before the sun
    addLight(scene, sun(3), at({0, 0, 5}));
    expectColor(middle(scene, ElementType::directLight), litWall(kColor, 3) * c.passing, 1e-3F);
  }
}

TEST(Shading, TranslucentLayersMultiplyInShadowAndInView) {
  Scene scene = wall(glowing({1, 1, 1}));
  scene::Material pane = glowing({0, 0, 1});
  pane.alphaMode = scene::Material::Alpha::blend;
  pane.baseColor.w = 0.5F;
  addQuad(scene, at({0, 0, -1}), pane);
  addQuad(scene, at({0, 0, -1.5F}), pane);
  expectColor(middle(scene, ElementType::emission), {0.25F, 0.25F, 1.0F}, 1e-4F);
  const Picture alpha = renderElement(scene, middleSample(), ElementType::alpha);
  EXPECT_EQ(alpha.at(1, 1)[3], 1);
  // The nearest surface gives the place, however thin it is.
  EXPECT_NEAR(middle(scene, ElementType::depth).x, 1, 1e-5F);

  scene.nodes[0].visible = false;
  const Picture thin = renderElement(scene, middleSample(), ElementType::alpha);
  EXPECT_NEAR(thin.at(1, 1)[3], 0.75F, 1e-6F);
}

TEST(Shading, EmissionAndUnlit) {
  expectColor(middle(wall(glowing({2, 3, 4})), ElementType::emission), {2, 3, 4}, 1e-6F);
  scene::Material sign = matt(kColor);
  sign.unlit = true;
  expectColor(middle(wall(sign), ElementType::beauty), kColor, 1e-6F);
}

TEST(Shading, UnlitSceneIsVisibleByTheSkyAloneWhichIsNotSeen) {
  Scene scene = wall(matt({0.8F, 0.8F, 0.8F}));
  const Vec3 beauty = middle(scene, ElementType::beauty);
  EXPECT_GT(beauty.x, 0.3F);
  EXPECT_LT(beauty.x, 1.0F);
  expectColor(middle(scene, ElementType::directLight), {0, 0, 0}, 0);
  scene.nodes[0].visible = false;
  for (const ElementType element : {ElementType::beauty, ElementType::alpha, ElementType::depth, ElementType::normal,
                                    ElementType::position, ElementType::objectId}) {
    for (const float value : renderElement(scene, middleSample(), element).pixels) EXPECT_EQ(value, 0);
  }
}

TEST(Shading, CornersAreDarkerThanOpenGround) {
  Scene scene;
  addQuad(scene, floorAt(-1), matt({0.8F, 0.8F, 0.8F}), 4);
  addQuad(scene, at({0, 0, -3}), matt({0.8F, 0.8F, 0.8F}), 4);
  FrameRequest r = request(1, 40, viewFrom({0, 0, 0}));
  r.pixelAspect = 40;
  r.samples = 64;
  const Picture picture = renderElement(scene, r);
  const Picture depth = renderElement(scene, r, ElementType::depth);
  ASSERT_NEAR(depth.at(0, 0)[0], 3, 0.01F);  // the wall
  int corner = 0;
  while (depth.at(0, corner)[0] > 2.95F) ++corner;
  EXPECT_LT(picture.at(0, corner)[0], 0.85F * picture.at(0, 39)[0]);
}

TEST(Shading, BacksOfOneSidedSurfacesAreNotSeen) {
  const Vec3 straight{0, 0, -1};
  for (const bool mirrored : {false, true}) {
    for (const bool doubleSided : {false, true}) {
      SCOPED_TRACE(::testing::Message() << "mirrored " << mirrored << ", double-sided " << doubleSided);
      Scene scene;
      scene::Material material = matt(kColor);
      material.doubleSided = doubleSided;
      const scene::Quat around{0, 1, 0, 0};
      addQuad(scene, scene::fromTranslationRotationScale(straight, around, {mirrored ? -1.0F : 1.0F, 1, 1}), material);
      const Picture alpha = renderElement(scene, middleSample(), ElementType::alpha);
      EXPECT_EQ(alpha.at(1, 1)[3], doubleSided ? 1 : 0);
      scene.nodes[0].matrix = scene::fromTranslationRotationScale(straight, {}, {mirrored ? -1.0F : 1.0F, 1, 1});
      expectColor(middle(scene, ElementType::albedo), kColor, 1e-6F);
      EXPECT_NEAR(middle(scene, ElementType::normal).z, 1, 1e-6F);
    }
  }
}

TEST(Shading, LookOfMaterialsFollowsTheSceneBetweenFrames) {
  Scene scene = wall(glowing({1, 0, 0}));
  addQuad(scene, at({0, 0, -1}), matt({1, 1, 1}));
  Renderer renderer(scene);
  const auto emission = [&] {
    return renderElements(renderer, middleSample(), {ElementType::emission}).front().at(1, 1)[0];
  };
  EXPECT_EQ(emission(), 0);
  scene.nodes[1].visible = false;
  EXPECT_EQ(emission(), 1);
  scene.materials[0].emission.x = 5;
  EXPECT_EQ(emission(), 5);
  // An opaque surface that becomes translucent lets light through from then on.
  scene.nodes[1].visible = true;
  scene.nodes[1].matrix = at({0, 0, 2});
  addLight(scene, sun(kPi), at({0, 0, 0}));
  const auto lit = [&] {
    return renderElements(renderer, middleSample(), {ElementType::directLight}).front().at(1, 1)[0];
  };
  EXPECT_EQ(lit(), 0);
  scene.materials[1].alphaMode = scene::Material::Alpha::blend;
  scene.materials[1].baseColor.w = 0;
  EXPECT_GT(lit(), 0);
}

TEST(Shading, NormalMapsBendTowardsTheImagesRightAndTop) {
  Scene scene = wall(matt(kColor));
  scene.images.push_back({"bump", 1, 1, {1.0F, 0.75F, 0.75F, 1}});  // (1, 0.5, 0.5)
  scene.materials[0].normalTexture.emplace().image = 0;
  const Vec3 expected = scene::normalize({1, 0.5F, 0.5F});
  const Vec3 derived = middle(scene, ElementType::normal);
  EXPECT_NEAR(derived.x, expected.x, 1e-4F);
  EXPECT_NEAR(derived.y, expected.y, 1e-4F);
  scene.meshes[0].primitives[0].tangents.assign(4, {1, 0, 0, 1});
  const Vec3 given = middle(scene, ElementType::normal);
  EXPECT_NEAR(given.x, expected.x, 1e-4F);
  EXPECT_NEAR(given.y, expected.y, 1e-4F);
  // A mirrored instance shows the mirrored bump.
  scene.nodes[0].matrix = scene::fromTranslationRotationScale({0, 0, -2}, {}, {-1, 1, 1});
  for (const bool tangents : {true, false}) {
    if (!tangents) scene.meshes[0].primitives[0].tangents.clear();
    const Vec3 mirrored = middle(scene, ElementType::normal);
    EXPECT_NEAR(mirrored.x, -expected.x, 1e-4F);
    EXPECT_NEAR(mirrored.y, expected.y, 1e-4F);
  }
}

TEST(Shading, TexturesMultiplyFactorsAndVertexColors) {
  Scene scene = wall(matt({0.5F, 0.5F, 0.5F}));
  scene.images.push_back({"two", 2, 1, {1, 0, 0, 1, 0, 1, 0, 1}});
  scene.materials[0].baseColorTexture.emplace().image = 0;
  scene.materials[0].baseColorTexture->nearest = true;
  scene.materials[0].baseColorTexture->offset = {0.25F, 0};  // the middle falls on the second texel
  scene.meshes[0].primitives[0].colors.assign(4, {1, 0.5F, 1, 1});
  expectColor(middle(scene, ElementType::albedo), {0, 0.25F, 0}, 1e-6F);
  // Without coordinates the factor stands alone.
  scene.meshes[0].primitives[0].uv0.clear();
  expectColor(middle(scene, ElementType::albedo), {0.5F, 0.25F, 0.5F}, 1e-6F);
}

}  // namespace
}  // namespace standin::raytracer::testing
