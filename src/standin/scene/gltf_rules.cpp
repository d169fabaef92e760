#include "standin/scene/gltf_rules.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string_view>

#include "standin/scene/scene_error.h"

namespace standin::scene {

namespace {

using nlohmann::json;

enum class Kind { object, list, objects, text, boolean, number, whole, numbers, index };

// One demand. `where` is the way from the document's root, "*" for every element of a list or member of an object.
struct Rule {
  std::string_view where;
  Kind kind;
  std::uint64_t count = 0;       // numbers: how many; whole: the highest value
  std::string_view target = {};  // index: the list it points into
  bool required = false;         // wherever the object that holds it is present
};

constexpr bool kRequired = true;
constexpr std::uint64_t kMaxOffset = std::uint64_t{1} << 48;
constexpr std::uint64_t kMaxCount = std::uint64_t{1} << 28;

// clang-format off
constexpr Rule kRules[] = {
    {"asset", Kind::object, 0, {}, kRequired},
    {"asset/version", Kind::text, 0, {}, kRequired},
    {"extensionsUsed", Kind::list},
    {"extensionsRequired", Kind::list},
    {"extensionsRequired/*", Kind::text},
    {"scene", Kind::index, 0, "scenes"},
    {"scenes", Kind::objects},
    {"scenes/*/nodes", Kind::list},
    {"scenes/*/nodes/*", Kind::index, 0, "nodes"},

    {"nodes", Kind::objects},
    {"nodes/*/name", Kind::text},
    {"nodes/*/children", Kind::list},
    {"nodes/*/children/*", Kind::index, 0, "nodes"},
    {"nodes/*/mesh", Kind::index, 0, "meshes"},
    {"nodes/*/camera", Kind::index, 0, "cameras"},
    {"nodes/*/skin", Kind::index, 0, "skins"},
    {"nodes/*/matrix", Kind::numbers, 16},
    {"nodes/*/translation", Kind::numbers, 3},
    {"nodes/*/rotation", Kind::numbers, 4},
    {"nodes/*/scale", Kind::numbers, 3},
    {"nodes/*/extensions", Kind::object},
    {"nodes/*/extensions/KHR_lights_punctual", Kind::object},
    {"nodes/*/extensions/KHR_lights_punctual/light", Kind::index, 0, "extensions/KHR_lights_punctual/lights", kRequired},

    {"meshes", Kind::objects},
    {"meshes/*/name", Kind::text},
    {"meshes/*/primitives", Kind::objects, 0, {}, kRequired},
    {"meshes/*/primitives/*/mode", Kind::whole, 6},
    {"meshes/*/primitives/*/indices", Kind::index, 0, "accessors"},
    {"meshes/*/primitives/*/material", Kind::index, 0, "materials"},
    {"meshes/*/primitives/*/attributes", Kind::object, 0, {}, kRequired},
    {"meshes/*/primitives/*/attributes/*", Kind::index, 0, "accessors"},

    {"accessors", Kind::objects},
    {"accessors/*/bufferView", Kind::index, 0, "bufferViews"},
    {"accessors/*/byteOffset", Kind::whole, kMaxOffset},
    {"accessors/*/componentType", Kind::whole, 5126, {}, kRequired},
    {"accessors/*/count", Kind::whole, kMaxCount, {}, kRequired},
    {"accessors/*/type", Kind::text, 0, {}, kRequired},
    {"accessors/*/normalized", Kind::boolean},
    {"accessors/*/sparse", Kind::object},
    {"accessors/*/sparse/count", Kind::whole, kMaxCount, {}, kRequired},
    {"accessors/*/sparse/indices", Kind::object, 0, {}, kRequired},
    {"accessors/*/sparse/indices/bufferView", Kind::index, 0, "bufferViews", kRequired},
    {"accessors/*/sparse/indices/byteOffset", Kind::whole, INT32_MAX},
    {"accessors/*/sparse/indices/componentType", Kind::whole, 5125, {}, kRequired},
    {"accessors/*/sparse/values", Kind::object, 0, {}, kRequired},
    {"accessors/*/sparse/values/bufferView", Kind::index, 0, "bufferViews", kRequired},
    {"accessors/*/sparse/values/byteOffset", Kind::whole, INT32_MAX},

    {"bufferViews", Kind::objects},
    {"bufferViews/*/buffer", Kind::index, 0, "buffers", kRequired},
    {"bufferViews/*/byteOffset", Kind::whole, kMaxOffset},
    {"bufferViews/*/byteLength", Kind::whole, kMaxOffset, {}, kRequired},
    {"bufferViews/*/byteStride", Kind::whole, 252},
    {"buffers", Kind::objects},
    {"buffers/*/uri", Kind::text},
    {"buffers/*/byteLength", Kind::whole, kMaxOffset, {}, kRequired},

    {"images", Kind::objects},
    {"images/*/uri", Kind::text},
    {"images/*/name", Kind::text},
    {"images/*/bufferView", Kind::index, 0, "bufferViews"},
    {"samplers", Kind::objects},
    {"samplers/*/magFilter", Kind::whole, INT32_MAX},
    {"samplers/*/minFilter", Kind::whole, INT32_MAX},
    {"samplers/*/wrapS", Kind::whole, INT32_MAX},
    {"samplers/*/wrapT", Kind::whole, INT32_MAX},
    {"textures", Kind::objects},
    {"textures/*/source", Kind::index, 0, "images"},
    {"textures/*/sampler", Kind::index, 0, "samplers"},

    {"materials", Kind::objects},
    {"materials/*/name", Kind::text},
    {"materials/*/pbrMetallicRoughness", Kind::object},
    {"materials/*/pbrMetallicRoughness/baseColorFactor", Kind::numbers, 4},
    {"materials/*/pbrMetallicRoughness/metallicFactor", Kind::number},
    {"materials/*/pbrMetallicRoughness/roughnessFactor", Kind::number},
    {"materials/*/emissiveFactor", Kind::numbers, 3},
    {"materials/*/alphaMode", Kind::text},
    {"materials/*/alphaCutoff", Kind::number},
    {"materials/*/doubleSided", Kind::boolean},
    {"materials/*/extensions", Kind::object},
    {"materials/*/extensions/KHR_materials_emissive_strength", Kind::object},
    {"materials/*/extensions/KHR_materials_emissive_strength/emissiveStrength", Kind::number},

    {"animations", Kind::objects},
    {"animations/*/channels", Kind::objects, 0, {}, kRequired},
    {"animations/*/channels/*/sampler", Kind::whole, INT32_MAX, {}, kRequired},
    {"animations/*/channels/*/target", Kind::object, 0, {}, kRequired},
    {"animations/*/channels/*/target/node", Kind::index, 0, "nodes"},
    {"animations/*/channels/*/target/path", Kind::text, 0, {}, kRequired},
    {"animations/*/samplers", Kind::objects, 0, {}, kRequired},
    {"animations/*/samplers/*/input", Kind::index, 0, "accessors", kRequired},
    {"animations/*/samplers/*/output", Kind::index, 0, "accessors", kRequired},
    {"animations/*/samplers/*/interpolation", Kind::text},

    {"cameras", Kind::objects},
    {"cameras/*/name", Kind::text},
    {"cameras/*/type", Kind::text, 0, {}, kRequired},
    {"cameras/*/perspective", Kind::object},
    {"cameras/*/perspective/yfov", Kind::number, 0, {}, kRequired},
    {"cameras/*/perspective/znear", Kind::number, 0, {}, kRequired},
    {"cameras/*/perspective/zfar", Kind::number},
    {"cameras/*/perspective/aspectRatio", Kind::number},
    {"skins", Kind::objects},

    {"extensions", Kind::object},
    {"extensions/KHR_lights_punctual", Kind::object},
    {"extensions/KHR_lights_punctual/lights", Kind::objects, 0, {}, kRequired},
    {"extensions/KHR_lights_punctual/lights/*/name", Kind::text},
    {"extensions/KHR_lights_punctual/lights/*/type", Kind::text, 0, {}, kRequired},
    {"extensions/KHR_lights_punctual/lights/*/color", Kind::numbers, 3},
    {"extensions/KHR_lights_punctual/lights/*/intensity", Kind::number},
    {"extensions/KHR_lights_punctual/lights/*/range", Kind::number},
    {"extensions/KHR_lights_punctual/lights/*/spot", Kind::object},
    {"extensions/KHR_lights_punctual/lights/*/spot/innerConeAngle", Kind::number},
    {"extensions/KHR_lights_punctual/lights/*/spot/outerConeAngle", Kind::number},
};

// Where a material may name a texture, and what each of these places holds.
constexpr std::string_view kTexturePlaces[] = {
    "materials/*/pbrMetallicRoughness/baseColorTexture", "materials/*/pbrMetallicRoughness/metallicRoughnessTexture",
    "materials/*/normalTexture", "materials/*/emissiveTexture"};
constexpr Rule kTextureRules[] = {
    {"", Kind::object},
    {"/index", Kind::index, 0, "textures", kRequired},
    {"/texCoord", Kind::whole, INT32_MAX},
    {"/scale", Kind::number},
    {"/extensions", Kind::object},
    {"/extensions/KHR_texture_transform", Kind::object},
    {"/extensions/KHR_texture_transform/offset", Kind::numbers, 2},
    {"/extensions/KHR_texture_transform/scale", Kind::numbers, 2},
    {"/extensions/KHR_texture_transform/rotation", Kind::number},
    {"/extensions/KHR_texture_transform/texCoord", Kind::whole, INT32_MAX},
};
// clang-format on

// The part of `way` before its first "/", which it loses.
std::string_view nextStep(std::string_view& way) {
  const std::size_t slash = way.find('/');
  const std::string_view step = way.substr(0, slash);
  way = slash == std::string_view::npos ? std::string_view{} : way.substr(slash + 1);
  return step;
}

std::size_t listSize(const json& document, std::string_view way) {
  const json* at = &document;
  while (!way.empty()) {
    const auto found = at->find(std::string(nextStep(way)));
    if (found == at->end()) return 0;
    at = &*found;
  }
  return at->is_array() ? at->size() : 0;
}

bool fitsFloat(const json& value) { return value.is_number() && std::fabs(value.get<double>()) <= FLT_MAX; }

bool areNumbers(const json& value, std::uint64_t count) {
  return value.is_array() && value.size() == count && std::all_of(value.begin(), value.end(), fitsFloat);
}

bool isWhole(const json& value, std::uint64_t highest) {
  return value.is_number_unsigned() && value.get<std::uint64_t>() <= highest;
}

// Checks one rule in every place of the document that it speaks of.
class RuleCheck {
 public:
  RuleCheck(const json& document, const Rule& rule) : document_(document), rule_(rule) {}

  void run() const { descend(document_, rule_.where, ""); }

 private:
  void descend(const json& at, std::string_view way, const std::string& place) const {
    if (way.empty()) return check(at, place);
    const std::string step(nextStep(way));
    if (step == "*") {
      std::size_t i = 0;
      for (auto it = at.begin(); it != at.end(); ++it, ++i)
        descend(*it, way, at.is_array() ? place + "[" + std::to_string(i) + "]" : place + "." + it.key());
      return;
    }
    const std::string below = place.empty() ? step : place + "." + step;
    const auto found = at.find(step);
    if (found != at.end()) return descend(*found, way, below);
    if (way.empty() && rule_.required) throw SceneError(below + ": expected " + expected() + ", got nothing");
  }

  void check(const json& value, const std::string& place) const {
    if (!holds(value)) throw SceneError(place + ": expected " + expected() + ", got " + shown(value));
  }

  bool holds(const json& value) const {
    switch (rule_.kind) {
      case Kind::object:
        return value.is_object();
      case Kind::list:
        return value.is_array();
      case Kind::objects:
        return value.is_array() && std::all_of(value.begin(), value.end(), [](const json& o) { return o.is_object(); });
      case Kind::text:
        return value.is_string();
      case Kind::boolean:
        return value.is_boolean();
      case Kind::number:
        return fitsFloat(value);
      case Kind::whole:
        return isWhole(value, rule_.count);
      case Kind::numbers:
        return areNumbers(value, rule_.count);
      case Kind::index: {
        const std::size_t size = listSize(document_, rule_.target);
        return size > 0 && isWhole(value, size - 1);
      }
    }
    return false;
  }

  std::string expected() const {
    switch (rule_.kind) {
      case Kind::object:
        return "an object";
      case Kind::list:
        return "a list";
      case Kind::objects:
        return "a list of objects";
      case Kind::text:
        return "text";
      case Kind::boolean:
        return "true or false";
      case Kind::number:
        return "a number that a float can hold";
      case Kind::whole:
        return "an integer from 0 to " + std::to_string(rule_.count);
      case Kind::numbers:
        return "a list of " + std::to_string(rule_.count) + " numbers";
      case Kind::index: {
        const std::size_t size = listSize(document_, rule_.target);
        return size > 0 ? "an index below " + std::to_string(size)
                        : "an index of " + std::string(rule_.target) + ", of which there are none";
      }
    }
    return {};
  }

  const json& document_;
  const Rule& rule_;
};

}  // namespace

std::string shown(const json& value) {
  constexpr std::size_t kLongest = 60;
  std::string text = value.dump(-1, ' ', true);  // ASCII only, so that cutting it breaks no character
  if (text.size() > kLongest) text = text.substr(0, kLongest) + "...";
  return text;
}

void checkGltfRules(const json& document) {
  for (const Rule& rule : kRules) RuleCheck(document, rule).run();
  for (const std::string_view place : kTexturePlaces) {
    for (Rule rule : kTextureRules) {
      const std::string where = std::string(place) + std::string(rule.where);
      rule.where = where;
      RuleCheck(document, rule).run();
    }
  }
}

}  // namespace standin::scene
