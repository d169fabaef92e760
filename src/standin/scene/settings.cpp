#include "standin/scene/settings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

#include "standin/scene/file_search.h"
#include "standin/scene/scene_error.h"
#include "standin/scene/settings_reader.h"

namespace standin::scene {

namespace {

using nlohmann::json;

// Frames whose time in ticks fits 32 bits at any frame rate.
constexpr int kLastFrame = 400000;
constexpr int kMostViewports = 16;

constexpr std::array<const char*, 4> kRendererNames{"default", "A", "B", "C"};

std::string quoted(const std::string& name) { return "\"" + name + "\""; }

// The "standin" value of an object's extras, or null.
const json* standinOf(const json& object) {
  const auto extras = object.find("extras");
  if (extras == object.end() || !extras->is_object()) return nullptr;
  const auto standin = extras->find("standin");
  return standin == extras->end() ? nullptr : &*standin;
}

void readFileName(SettingsReader& reader, const std::string& folder, std::string& out) {
  std::string name;
  if (reader.read("output", name)) out = name.empty() ? name : resolveName(folder, name);
}

void readRenderer(SettingsReader& reader, RenderSettings& render) {
  const json* value = reader.find("renderer");
  if (value == nullptr) return;
  if (value->is_string() &&
      std::find(kRendererNames.begin(), kRendererNames.end(), value->get<std::string>()) != kRendererNames.end()) {
    render.renderer = value->get<std::string>();
  } else if (value->is_array()) {
    ClassIdPair id;
    reader.readClassId("renderer", id);
    render.renderer = id;
  } else {
    std::string expected;
    for (const char* name : kRendererNames) expected += (expected.empty() ? "" : ", ") + quoted(name);
    reader.fail("renderer", expected + " or a list of 2 integers");
  }
}

void readRender(SettingsReader& reader, const std::string& folder, RenderSettings& render) {
  reader.readInteger("width", 1, 32767, render.width);
  reader.readInteger("height", 1, 32767, render.height);
  reader.readNumber("pixelAspect", 0.01, 100, render.pixelAspect);
  reader.read("saveFile", render.saveFile);
  readFileName(reader, folder, render.output);
  reader.read("skipExisting", render.skipExisting);
  reader.readInteger("samples", 1, 65536, render.samples);
  readRenderer(reader, render);
  reader.readIntegers("requirements", 0, 65535, render.requirements);
  reader.read("elementsActive", render.elementsActive);
}

ElementType readElementType(SettingsReader& reader, const std::string& type) {
  std::string expected;
  for (const ElementTypeName& known : kElementTypeNames) {
    if (type == known.name || type == known.inWords) return known.type;
    expected += (expected.empty() ? "one of " : ", ") + quoted(known.name);
  }
  reader.fail("type", expected);
}

ElementSettings readElement(SettingsReader& reader, const std::string& folder) {
  std::string type;
  reader.read("type", type);
  ElementSettings element;
  element.type = readElementType(reader, type);
  element.name = type;
  reader.read("name", element.name);
  reader.read("enabled", element.enabled);
  readFileName(reader, folder, element.output);
  return element;
}

void readPoint(SettingsReader& reader, const char* key, Vec3& out) {
  std::array<float, 3> numbers{};
  if (reader.readNumbers(key, numbers.data(), numbers.size())) out = {numbers[0], numbers[1], numbers[2]};
}

ViewportSettings readViewport(SettingsReader& reader) {
  ViewportSettings viewport;
  reader.read("camera", viewport.camera);
  readPoint(reader, "eye", viewport.eye);
  readPoint(reader, "target", viewport.target);
  reader.readNumber("fov", 1, 179, viewport.fov);
  return viewport;
}

void readAnimationRange(SettingsReader& reader, Scene& scene) {
  std::vector<int> range;
  if (!reader.readIntegers("animationRange", -kLastFrame, kLastFrame, range)) return;
  if (range.size() != 2 || range[0] > range[1]) reader.fail("animationRange", "the first and the last frame");
  scene.firstFrame = range[0];
  scene.lastFrame = range[1];
}

void readScene(SettingsReader& reader, const std::string& folder, Scene& scene) {
  reader.readInteger("frameRate", 1, kTicksPerSecond, scene.frameRate);
  readAnimationRange(reader, scene);
  reader.readObject("render", [&](SettingsReader& render) { readRender(render, folder, scene.render); });
  reader.readObjects("elements",
                     [&](SettingsReader& element) { scene.elements.push_back(readElement(element, folder)); });
  reader.readObjects("viewports", [&](SettingsReader& viewport) {
    if (scene.viewports.size() == kMostViewports)
      reader.fail("viewports", "at most " + std::to_string(kMostViewports) + " viewports");
    scene.viewports.push_back(readViewport(viewport));
  });
  reader.readInteger("activeViewport", 0, kMostViewports - 1, scene.activeViewport);
  reader.readInteger("lockedViewport", kNone, kMostViewports - 1, scene.lockedViewport);
  reader.readTexts("xrefs", scene.xrefs);
  reader.readTexts("plugins", scene.plugins);
}

void readEffect(SettingsReader& reader, MultipassSettings& multipass) {
  const json* value = reader.find("effect");
  if (value == nullptr) return;
  if (*value == "depthOfField") {
    multipass.kind = EffectKind::depthOfField;
  } else if (*value == "motionBlur") {
    multipass.kind = EffectKind::motionBlur;
  } else if (value->is_array()) {
    multipass.kind = EffectKind::other;
    reader.readClassId("effect", multipass.classId);
  } else {
    reader.fail("effect", "\"depthOfField\", \"motionBlur\" or a list of 2 integers");
  }
}

MultipassSettings readMultipass(SettingsReader& reader) {
  MultipassSettings multipass;
  readEffect(reader, multipass);
  reader.read("enabled", multipass.enabled);
  reader.readInteger("passes", 0, 1024, multipass.passes);
  reader.readNumber("focusDistance", 0.001, 1e6, multipass.focusDistance);
  reader.readNumber("aperture", 0, 1000, multipass.aperture);
  reader.readNumber("duration", 0, 1000, multipass.duration);
  return multipass;
}

}  // namespace

void readSceneSettings(const json& sceneJson, const std::string& folder, Scene& scene) {
  const json* standin = standinOf(sceneJson);
  if (standin == nullptr) return;
  SettingsReader reader(*standin, "extras.standin", scene.warnings);
  readScene(reader, folder, scene);
  reader.finish();
}

namespace {

void readUserProperties(const json& nodeJson, Node& node) {
  const auto extras = nodeJson.find("extras");
  if (extras == nodeJson.end() || !extras->is_object()) return;
  for (const auto& [name, value] : extras->items()) {
    if (value.is_boolean()) node.userProperties.emplace(name, value.get<bool>());
    if (value.is_string()) node.userProperties.emplace(name, value.get<std::string>());
    if (!value.is_number()) continue;
    const auto number = value.get<double>();
    const bool isInteger = value.is_number_integer() && std::abs(number) <= std::numeric_limits<std::int32_t>::max();
    node.userProperties.emplace(
        name, isInteger ? PlainValue(value.get<std::int32_t>()) : PlainValue(static_cast<float>(number)));
  }
}

}  // namespace

void readNodeSettings(const json& nodeJson, const std::string& place, Scene& scene, int index) {
  readUserProperties(nodeJson, scene.nodes[static_cast<std::size_t>(index)]);
  const json* standin = standinOf(nodeJson);
  if (standin == nullptr) return;
  Node& node = scene.nodes[static_cast<std::size_t>(index)];
  Camera* camera = node.camera == kNone ? nullptr : &scene.cameras[static_cast<std::size_t>(node.camera)];
  SettingsReader reader(*standin, place + ".extras.standin", scene.warnings);
  reader.read("visible", node.visible);
  if (ClassIdPair id; reader.readClassId("classId", id)) {
    node.classId = id;
    if (camera != nullptr) camera->classId = id;
  }
  reader.readObject("multipass", [&](SettingsReader& below) {
    const MultipassSettings multipass = readMultipass(below);
    if (camera != nullptr)
      camera->multipass = multipass;
    else
      scene.warnings.push_back(reader.pathOf("multipass") + ": the node is no camera; passed over");
  });
  reader.finish();
}

void completeViewports(Scene& scene) {
  if (scene.viewports.empty()) {
    scene.viewports.emplace_back();
    for (const Node& node : scene.nodes) {
      if (node.camera == kNone) continue;
      scene.viewports.front().camera = node.name;
      break;
    }
  }
  for (std::size_t i = 0; i < scene.viewports.size(); ++i) {
    std::string& camera = scene.viewports[i].camera;
    const auto isCamera = [&camera](const Node& node) { return node.camera != kNone && node.name == camera; };
    if (camera.empty() || std::any_of(scene.nodes.begin(), scene.nodes.end(), isCamera)) continue;
    scene.warnings.push_back("extras.standin.viewports[" + std::to_string(i) + "].camera: the scene has no camera \"" +
                             camera + "\"; the viewport shows a plain view");
    camera.clear();
  }
  // A host has as many viewports as its indices name.
  const int highest = std::max(scene.activeViewport, scene.lockedViewport);
  if (highest >= static_cast<int>(scene.viewports.size()))
    scene.viewports.resize(static_cast<std::size_t>(highest) + 1);
}

}  // namespace standin::scene
