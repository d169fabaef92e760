// What the glTF format demands of a file's JSON before anyone may rely on it.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace standin::scene {

// `document` is an object. Types, required properties, lengths of number lists, and the range of every reference to
// another part. Throws SceneError such as `nodes[3].mesh: expected an index below 2, got 5`.
void checkGltfRules(const nlohmann::json& document);

// A value as an error text shows it: JSON, cut short.
std::string shown(const nlohmann::json& value);

}  // namespace standin::scene
