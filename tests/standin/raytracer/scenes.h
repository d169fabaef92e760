// Small scenes made in code, and renders of them, for the ray tracer's tests and benchmark.
#pragma once

#include <vector>

#include "standin/raytracer/renderer.h"
#include "standin/scene/description.h"

namespace standin::raytracer::testing {

using scene::ElementType;
using scene::Scene;
using scene::Vec2;
using scene::Vec3;

// Each adds one mesh with a node and returns the node's index. Quads face +z before they are placed.
int addQuad(Scene& scene, const scene::Transform& placement, const scene::Material& material, float halfSize = 1);
int addSphere(Scene& scene, Vec3 centre, float radius, const scene::Material& material, int rings = 48);
int addNode(Scene& scene, const scene::Transform& placement, int mesh);
int addLight(Scene& scene, const scene::Light& light, const scene::Transform& placement);

scene::Transform at(Vec3 position);
scene::Transform floorAt(float y);  // a quad's +z becomes up

scene::Material matt(Vec3 color);     // rough, no metal
scene::Material glowing(Vec3 light);  // black otherwise
scene::Light sun(float lux);          // shines along -z before it is placed
scene::Light bulb(float candela);

// Sphere on a floor with a wall, a mask and a blended pane, point, spot and directional light: something of everything.
Scene mixedScene();

struct Picture {
  int width = 0, height = 0;
  std::vector<float> pixels;
  const float* at(int x, int y) const { return &pixels[(static_cast<std::size_t>(y) * width + x) * 4]; }
};

// Looks from `eye` along -z, 90 degrees wide.
View viewFrom(Vec3 eye);
FrameRequest request(int width, int height, const View& view);
// One full-size picture an element.
std::vector<Picture> renderElements(Renderer& renderer, FrameRequest request, const std::vector<ElementType>& elements);
Picture renderElement(const Scene& scene, const FrameRequest& request, ElementType element = ElementType::beauty);

}  // namespace standin::raytracer::testing
