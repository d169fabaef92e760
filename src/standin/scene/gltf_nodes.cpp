#include "standin/scene/gltf_parts.h"

#include <algorithm>
#include <cmath>

#include "standin/scene/gltf_rules.h"
#include "standin/scene/scene_error.h"

namespace standin::scene {

namespace {

using nlohmann::json;

constexpr double kPi = 3.14159265358979323846;

std::string nodePlace(int index) { return "nodes[" + std::to_string(index) + "]"; }

// Each node's parent in the file; a node has at most one.
std::vector<int> parentsOf(const tinygltf::Model& model) {
  std::vector<int> parents(model.nodes.size(), kNone);
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    for (const int child : model.nodes[i].children) {
      int& parent = parents[static_cast<std::size_t>(child)];
      if (parent != kNone)
        throw SceneError(nodePlace(child) + ": expected one parent, got " + nodePlace(parent) + " and " +
                         nodePlace(static_cast<int>(i)));
      parent = static_cast<int>(i);
    }
  }
  return parents;
}

// With one parent each, nodes that no parentless node reaches are those of a circle and what hangs on it.
void checkNoCircle(const tinygltf::Model& model, const std::vector<int>& parents) {
  std::vector<int> open;
  std::vector<bool> reached(parents.size(), false);
  for (std::size_t i = 0; i < parents.size(); ++i)
    if (parents[i] == kNone) open.push_back(static_cast<int>(i));
  while (!open.empty()) {
    const auto node = static_cast<std::size_t>(open.back());
    open.pop_back();
    reached[node] = true;
    open.insert(open.end(), model.nodes[node].children.begin(), model.nodes[node].children.end());
  }
  const auto lost = std::find(reached.begin(), reached.end(), false);
  if (lost != reached.end())
    throw SceneError(nodePlace(static_cast<int>(lost - reached.begin())) +
                     ": expected a tree, got a node below one of its own children");
}

std::vector<int> rootsOf(const GltfDocument& document, const std::vector<int>& parents) {
  std::vector<int> roots;
  if (const int scene = defaultSceneOf(document); scene != kNone) {
    roots = document.model.scenes[static_cast<std::size_t>(scene)].nodes;
    for (const int root : roots) {
      if (parents[static_cast<std::size_t>(root)] != kNone)
        throw SceneError("scenes[" + std::to_string(scene) + "].nodes: expected nodes without a parent, got " +
                         nodePlace(root));
      if (std::count(roots.begin(), roots.end(), root) > 1)
        throw SceneError("scenes[" + std::to_string(scene) + "].nodes: expected every node once, got " +
                         nodePlace(root) + " twice");
    }
  } else {
    for (std::size_t i = 0; i < parents.size(); ++i)
      if (parents[i] == kNone) roots.push_back(static_cast<int>(i));
  }
  return roots;
}

// Numbers what the roots reach in the file's order.
NodeNumbers numberNodes(const tinygltf::Model& model, std::vector<int> open) {
  NodeNumbers numbers;
  std::vector<bool> reached(model.nodes.size(), false);
  while (!open.empty()) {
    const auto node = static_cast<std::size_t>(open.back());
    open.pop_back();
    reached[node] = true;
    open.insert(open.end(), model.nodes[node].children.begin(), model.nodes[node].children.end());
  }
  numbers.inScene.assign(model.nodes.size(), kNone);
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    if (!reached[i]) continue;
    numbers.inScene[i] = static_cast<int>(numbers.inFile.size());
    numbers.inFile.push_back(static_cast<int>(i));
  }
  return numbers;
}

void readPlacement(const tinygltf::Node& source, const std::string& place, Node& node) {
  const auto number = [](const std::vector<double>& list, std::size_t i) { return static_cast<float>(list[i]); };
  if (const auto& m = source.matrix; !m.empty()) {  // column-major
    Transform transform;
    for (std::size_t row = 0; row < 3; ++row)
      for (std::size_t column = 0; column < 4; ++column) transform.m[4 * row + column] = number(m, 4 * column + row);
    node.matrix = transform;
  }
  if (const auto& t = source.translation; !t.empty()) node.translation = {number(t, 0), number(t, 1), number(t, 2)};
  if (const auto& s = source.scale; !s.empty()) node.scale = {number(s, 0), number(s, 1), number(s, 2)};
  if (const auto& r = source.rotation; !r.empty()) {
    const double length = std::sqrt(r[0] * r[0] + r[1] * r[1] + r[2] * r[2] + r[3] * r[3]);
    if (!(length > 0)) throw SceneError(place + ".rotation: expected a quaternion of unit length, got all zeros");
    node.rotation = {static_cast<float>(r[0] / length), static_cast<float>(r[1] / length),
                     static_cast<float>(r[2] / length), static_cast<float>(r[3] / length)};
  }
}

// Adds the camera and returns its index; kNone for an orthographic one.
int addCamera(const GltfDocument& document, int index, Scene& scene) {
  const tinygltf::Camera& source = document.model.cameras[static_cast<std::size_t>(index)];
  const std::string place = "cameras[" + std::to_string(index) + "]";
  if (source.type != "perspective") {
    scene.warnings.push_back(place + ": orthographic cameras are passed over");
    return kNone;
  }
  const tinygltf::PerspectiveCamera& lens = source.perspective;
  const auto demand = [&place](bool holds, const char* key, const char* expected, double got) {
    if (!holds) throw SceneError(place + ".perspective." + key + ": expected " + expected + ", got " + shown(got));
  };
  demand(lens.yfov > 0 && lens.yfov < kPi, "yfov", "an angle above 0 and below pi", lens.yfov);
  demand(lens.znear > 0, "znear", "a number above 0", lens.znear);
  // 0 is what the reader library gives for a key that is not there.
  demand(lens.zfar == 0 || lens.zfar > lens.znear, "zfar", "a number above znear", lens.zfar);
  demand(lens.aspectRatio >= 0, "aspectRatio", "a number above 0", lens.aspectRatio);
  Camera camera;
  camera.name = source.name;
  camera.yfov = static_cast<float>(lens.yfov);
  camera.aspect = static_cast<float>(lens.aspectRatio);
  camera.znear = static_cast<float>(lens.znear);
  camera.zfar = static_cast<float>(lens.zfar);
  scene.cameras.push_back(camera);
  return static_cast<int>(scene.cameras.size()) - 1;
}

Light::Kind lightKind(const std::string& type, const std::string& place) {
  if (type == "directional") return Light::Kind::directional;
  if (type == "point") return Light::Kind::point;
  if (type == "spot") return Light::Kind::spot;
  throw SceneError(place + ".type: expected directional, point or spot, got " + shown(type));
}

void loadLights(const GltfDocument& document, Scene& scene) {
  const json empty = json::object();
  const json& extensions = document.json.contains("extensions") ? document.json["extensions"] : empty;
  const auto extension = extensions.find("KHR_lights_punctual");
  if (extension == extensions.end()) return;
  for (const json& source : extension->at("lights")) {
    const std::string place = "extensions.KHR_lights_punctual.lights[" + std::to_string(scene.lights.size()) + "]";
    Light light;
    light.name = source.value("name", "");
    light.kind = lightKind(source["type"].get<std::string>(), place);
    const auto color = source.value("color", std::vector<float>{1, 1, 1});
    light.color = {color[0], color[1], color[2]};
    light.intensity = source.value("intensity", 1.0F);
    light.range = source.value("range", 0.0F);
    if (light.intensity < 0) throw SceneError(place + ".intensity: expected at least 0, got " + shown(light.intensity));
    if (light.range < 0) throw SceneError(place + ".range: expected a number above 0, got " + shown(light.range));
    const json spot = source.value("spot", empty);
    light.innerCone = spot.value("innerConeAngle", light.innerCone);
    light.outerCone = spot.value("outerConeAngle", light.outerCone);
    const bool cone = light.innerCone >= 0 && light.innerCone < light.outerCone && light.outerCone < kPi / 2 + 1e-4;
    if (light.kind == Light::Kind::spot && !cone)
      throw SceneError(place + ".spot: expected 0 <= innerConeAngle < outerConeAngle <= pi / 2, got " +
                       shown(light.innerCone) + " and " + shown(light.outerCone));
    scene.lights.push_back(light);
  }
}

int lightOf(const json& node) {
  const auto extensions = node.find("extensions");
  if (extensions == node.end()) return kNone;
  const auto light = extensions->find("KHR_lights_punctual");
  return light == extensions->end() ? kNone : light->at("light").get<int>();
}

std::string nameOf(const tinygltf::Node& source, const Node& node, int index, const Scene& scene) {
  if (!source.name.empty()) return source.name;
  std::string name;
  if (node.camera != kNone) name = scene.cameras[static_cast<std::size_t>(node.camera)].name;
  if (name.empty() && node.light != kNone) name = scene.lights[static_cast<std::size_t>(node.light)].name;
  if (name.empty() && node.mesh != kNone) name = scene.meshes[static_cast<std::size_t>(node.mesh)].name;
  return name.empty() ? "node" + std::to_string(index) : name;
}

Node readNode(const GltfDocument& document, int index, Scene& scene) {
  const tinygltf::Node& source = document.model.nodes[static_cast<std::size_t>(index)];
  Node node;
  readPlacement(source, nodePlace(index), node);
  node.mesh = source.mesh;
  if (source.camera >= 0) node.camera = addCamera(document, source.camera, scene);
  node.light = lightOf(document.json["nodes"][static_cast<std::size_t>(index)]);
  node.name = nameOf(source, node, index, scene);
  if (source.skin >= 0) scene.warnings.push_back(nodePlace(index) + ": skins are passed over");
  return node;
}

}  // namespace

int defaultSceneOf(const GltfDocument& document) {
  if (document.model.scenes.empty()) return kNone;
  return std::max(document.model.defaultScene, 0);
}

NodeNumbers loadNodes(const GltfDocument& document, Scene& scene) {
  const std::vector<int> parents = parentsOf(document.model);
  checkNoCircle(document.model, parents);
  const std::vector<int> roots = rootsOf(document, parents);
  NodeNumbers numbers = numberNodes(document.model, roots);
  const auto inScene = [&numbers](int fileIndex) { return numbers.inScene[static_cast<std::size_t>(fileIndex)]; };
  loadLights(document, scene);
  int objects = 0;
  for (const int index : numbers.inFile) {
    Node node = readNode(document, index, scene);
    const int parent = parents[static_cast<std::size_t>(index)];
    node.parent = parent == kNone ? kNone : inScene(parent);
    for (const int child : document.model.nodes[static_cast<std::size_t>(index)].children)
      node.children.push_back(inScene(child));
    if (node.mesh != kNone) node.objectId = ++objects;
    scene.nodes.push_back(std::move(node));
  }
  for (const int root : roots) scene.roots.push_back(inScene(root));
  return numbers;
}

}  // namespace standin::scene
