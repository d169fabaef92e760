// The settings that scene files keep under the key "standin" of their extras; docs/scene-settings.md tells every key.
#pragma once

#include <array>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

#include "standin/scene/description.h"

namespace standin::scene {

// The types of render elements as settings name them. Each may be spelled in words as well.
struct ElementTypeName {
  const char* name;
  std::string_view inWords;  // equals the name where that is one word
  ElementType type;
};
inline constexpr std::array kElementTypeNames{
    ElementTypeName{"beauty", "beauty", ElementType::beauty},
    ElementTypeName{"alpha", "alpha", ElementType::alpha},
    ElementTypeName{"depth", "depth", ElementType::depth},
    ElementTypeName{"normal", "normal", ElementType::normal},
    ElementTypeName{"albedo", "albedo", ElementType::albedo},
    ElementTypeName{"position", "position", ElementType::position},
    ElementTypeName{"objectId", "object id", ElementType::objectId},
    ElementTypeName{"directLight", "direct light", ElementType::directLight},
    ElementTypeName{"emission", "emission", ElementType::emission},
};

// Both throw SceneError naming the key whose value has the wrong type or is out of range, and add a warning for each
// unknown key. `place` comes before "extras" in messages and is empty for the default scene; `folder` is what relative
// names start from.

// Reads the default scene's settings. Keys that are absent leave the scene's fields as they are. `sceneJson` is the
// document's scene object, or an empty object.
void readSceneSettings(const nlohmann::json& sceneJson, const std::string& folder, Scene& scene);

// Reads what the document's node object says of the node at `index`, and of its camera.
void readNodeSettings(const nlohmann::json& nodeJson, const std::string& place, Scene& scene, int index);

// After all nodes are there: gives the scene its first viewport when it has none (the first camera, else the default
// view) and turns viewports of unknown cameras into views, with a warning.
void completeViewports(Scene& scene);

}  // namespace standin::scene
