#include "scenes.h"

#include <cmath>

namespace standin::raytracer::testing {

namespace {

constexpr float kPi = 3.14159265F;

int addMesh(Scene& scene, scene::Primitive primitive, const scene::Material& material) {
  primitive.material = static_cast<int>(scene.materials.size());
  scene.materials.push_back(material);
  scene.meshes.push_back({"", {std::move(primitive)}});
  return static_cast<int>(scene.meshes.size()) - 1;
}

}  // namespace

int addNode(Scene& scene, const scene::Transform& placement, int mesh) {
  scene::Node node;
  node.matrix = placement;
  node.mesh = mesh;
  node.objectId = static_cast<int>(scene.nodes.size()) + 1;
  scene.nodes.push_back(node);
  scene.roots.push_back(static_cast<int>(scene.nodes.size()) - 1);
  return scene.roots.back();
}

int addQuad(Scene& scene, const scene::Transform& placement, const scene::Material& material, float s) {
  scene::Primitive quad;
  quad.positions = {{-s, -s, 0}, {s, -s, 0}, {s, s, 0}, {-s, s, 0}};
  quad.normals.assign(4, {0, 0, 1});
  quad.uv0 = {{0, 1}, {1, 1}, {1, 0}, {0, 0}};
  quad.indices = {0, 1, 2, 0, 2, 3};
  return addNode(scene, placement, addMesh(scene, std::move(quad), material));
}

int addSphere(Scene& scene, Vec3 centre, float radius, const scene::Material& material, int rings) {
  scene::Primitive sphere;
  const int segments = 2 * rings;
  for (int r = 0; r <= rings; ++r) {
    for (int s = 0; s <= segments; ++s) {
      const float v = static_cast<float>(r) / static_cast<float>(rings);
      const float u = static_cast<float>(s) / static_cast<float>(segments);
      const float theta = v * kPi, phi = u * 2 * kPi;
      const Vec3 n{std::sin(theta) * std::cos(phi), std::cos(theta), -std::sin(theta) * std::sin(phi)};
      sphere.normals.push_back(n);
      sphere.positions.push_back(n * radius);
      sphere.uv0.push_back({u, v});
    }
  }
  const auto vertex = [&](int r, int s) { return static_cast<std::uint32_t>(r * (segments + 1) + s); };
  for (int r = 0; r < rings; ++r) {
    for (int s = 0; s < segments; ++s) {
      for (const std::uint32_t i : {vertex(r, s), vertex(r + 1, s), vertex(r + 1, s + 1), vertex(r, s),
                                    vertex(r + 1, s + 1), vertex(r, s + 1)}) {
        sphere.indices.push_back(i);
      }
    }
  }
  return addNode(scene, at(centre), addMesh(scene, std::move(sphere), material));
}

int addLight(Scene& scene, const scene::Light& light, const scene::Transform& placement) {
  const int node = addNode(scene, placement, scene::kNone);
  scene.nodes[static_cast<std::size_t>(node)].light = static_cast<int>(scene.lights.size());
  scene.lights.push_back(light);
  return node;
}

scene::Transform at(Vec3 position) { return scene::fromTranslationRotationScale(position, {}, {1, 1, 1}); }

scene::Transform floorAt(float y) {
  const float h = std::sqrt(0.5F);
  return scene::fromTranslationRotationScale({0, y, 0}, {-h, 0, 0, h}, {1, 1, 1});
}

scene::Material matt(Vec3 color) {
  scene::Material material;
  material.baseColor = {color.x, color.y, color.z, 1};
  material.metallic = 0;
  return material;
}

scene::Material glowing(Vec3 light) {
  scene::Material material = matt({0, 0, 0});
  material.emission = light;
  return material;
}

scene::Light sun(float lux) {
  scene::Light light;
  light.kind = scene::Light::Kind::directional;
  light.intensity = lux;
  return light;
}

scene::Light bulb(float candela) {
  scene::Light light;
  light.intensity = candela;
  return light;
}

Scene mixedScene() {
  Scene scene;
  scene::Image checker{"checker", 8, 8, {}};
  for (int i = 0; i < 64; ++i) {
    const float value = (i % 8 + i / 8) % 2 == 0 ? 0.8F : 0.2F;
    checker.texels.insert(checker.texels.end(), {value, value, value * 0.8F, value < 0.5F ? 0.0F : 1.0F});
  }
  scene.images.push_back(checker);
  scene::Texture texture;
  texture.image = 0;

  scene::Material floor = matt({0.9F, 0.9F, 0.9F});
  floor.baseColorTexture = texture;
  addQuad(scene, floorAt(-1), floor, 6);
  scene::Material steel;
  steel.baseColor = {0.9F, 0.85F, 0.7F, 1};
  steel.roughness = 0.15F;
  addSphere(scene, {-1.2F, -0.2F, -4}, 0.8F, steel);
  scene::Material plastic = matt({0.7F, 0.1F, 0.1F});
  plastic.roughness = 0.4F;
  addSphere(scene, {0.9F, -0.4F, -3.2F}, 0.6F, plastic);
  addQuad(scene, at({0, 2, -6}), matt({0.3F, 0.5F, 0.7F}), 3);
  scene::Material mask = matt({0.2F, 0.6F, 0.2F});
  mask.alphaMode = scene::Material::Alpha::mask;
  mask.baseColorTexture = texture;
  mask.doubleSided = true;
  addQuad(scene, at({1.8F, 0, -4.5F}), mask, 0.6F);
  scene::Material glass = matt({0.3F, 0.4F, 0.9F});
  glass.baseColor.w = 0.4F;
  glass.alphaMode = scene::Material::Alpha::blend;
  glass.doubleSided = true;
  addQuad(scene, at({-0.2F, -0.3F, -2.4F}), glass, 0.5F);

  addLight(scene, bulb(12), at({-2, 3, -2}));
  scene::Light spot = bulb(40);
  spot.kind = scene::Light::Kind::spot;
  spot.innerCone = 0.2F;
  spot.outerCone = 0.4F;
  spot.color = {1, 0.8F, 0.6F};
  addLight(scene, spot, scene::lookAt({3, 3, 0}, {0.5F, -1, -3.5F}));
  addLight(scene, sun(1), scene::lookAt({2, 4, 3}, {0, 0, 0}));
  return scene;
}

View viewFrom(Vec3 eye) {
  View view;
  view.worldToCamera = scene::inverse(at(eye));
  view.fov = kPi / 2;
  return view;
}

FrameRequest request(int width, int height, const View& view) {
  FrameRequest request;
  request.view = view;
  request.width = width;
  request.height = height;
  return request;
}

std::vector<Picture> renderElements(Renderer& renderer, FrameRequest request,
                                    const std::vector<ElementType>& elements) {
  std::vector<Picture> pictures;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const std::size_t size = static_cast<std::size_t>(request.width) * static_cast<std::size_t>(request.height) * 4;
    pictures.push_back({request.width, request.height, std::vector<float>(size, -1.0F)});
  }
  for (std::size_t i = 0; i < elements.size(); ++i) {
    request.outputs.push_back({elements[i], pictures[i].pixels.data(), 0, 0, request.width, request.height});
  }
  renderer.render(request);
  return pictures;
}

Picture renderElement(const Scene& scene, const FrameRequest& request, ElementType element) {
  Renderer renderer(scene);
  return renderElements(renderer, request, {element}).front();
}

}  // namespace standin::raytracer::testing
