// A glTF file as read: its JSON text checked against the format's rules, its structure, and its buffers.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "standin/scene/gltf_library.h"

namespace standin::scene {

using Bytes = std::vector<unsigned char>;

struct GltfDocument {
  std::string folder;          // of the file, native; relative names start here
  nlohmann::json json;         // as written, without "buffers"
  tinygltf::Model model;       // the same parsed; no buffers and no images in it
  std::vector<Bytes> buffers;  // at least as long as their byteLength
  std::vector<std::string> warnings;
};

// Reads the file and the buffers it names. Every reference from one part of the file to another is in range
// afterwards, every property has its type, every number fits a float. What buffer views and accessors say of their
// sizes is not checked yet. Throws SceneError without the file's name.
GltfDocument readGltf(const std::string& path);

// The whole file; throws SceneError when it cannot be read.
Bytes readFile(const std::string& path);

// The decoded content of "data:" text; throws SceneError naming `place` when it is malformed.
bool isDataUri(std::string_view uri);
Bytes decodeDataUri(const std::string& uri, const std::string& place);

}  // namespace standin::scene
