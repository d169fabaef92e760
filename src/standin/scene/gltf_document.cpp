#include "standin/scene/gltf_document.h"

#include <array>
#include <cstring>
#include <fstream>
#include <set>

#include "standin/scene/file_search.h"
#include "standin/scene/gltf_rules.h"
#include "standin/scene/scene_error.h"

namespace standin::scene {

namespace {

using nlohmann::json;

constexpr std::uint32_t kGlbMagic = 0x46546C67, kJsonChunk = 0x4E4F534A, kBinaryChunk = 0x004E4942;
constexpr std::size_t kGlbHeader = 12, kChunkHeader = 8;
constexpr int kDeepestJson = 100;

// Extensions whose meaning is carried out, or which change nothing here.
const std::set<std::string> kKnownExtensions{"KHR_lights_punctual", "KHR_materials_emissive_strength",
                                             "KHR_materials_unlit", "KHR_texture_transform", "KHR_mesh_quantization"};

// The two parts of a binary file; a text file is all JSON.
struct Parts {
  std::string_view jsonText;
  std::string_view binary;
  bool hasBinary = false;
};

std::uint32_t littleEndian(std::string_view bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
  return value;
}

// The chunk that begins at `at`; moves `at` behind it.
std::string_view takeChunk(std::string_view file, std::size_t& at, std::uint32_t& type) {
  if (file.size() - at < kChunkHeader)
    throw SceneError("binary glTF: expected a chunk header of 8 bytes, got " + std::to_string(file.size() - at));
  const std::uint32_t length = littleEndian(file, at);
  type = littleEndian(file, at + 4);
  at += kChunkHeader;
  if (length > file.size() - at)
    throw SceneError("binary glTF: expected a chunk of " + std::to_string(length) + " bytes, got " +
                     std::to_string(file.size() - at));
  const std::string_view chunk = file.substr(at, length);
  at += length;
  return chunk;
}

Parts splitFile(std::string_view file) {
  if (file.size() < 4 || littleEndian(file, 0) != kGlbMagic) return {file, {}, false};
  if (file.size() < kGlbHeader)
    throw SceneError("binary glTF: expected a header of 12 bytes, got " + std::to_string(file.size()));
  if (const std::uint32_t version = littleEndian(file, 4); version != 2)
    throw SceneError("binary glTF: expected version 2, got " + std::to_string(version));
  const std::uint32_t length = littleEndian(file, 8);
  if (length > file.size() || length < kGlbHeader)
    throw SceneError("binary glTF: expected " + std::to_string(length) + " bytes, got " + std::to_string(file.size()));
  file = file.substr(0, length);
  std::size_t at = kGlbHeader;
  std::uint32_t type = 0;
  Parts parts;
  parts.jsonText = takeChunk(file, at, type);
  if (type != kJsonChunk) throw SceneError("binary glTF: expected the JSON chunk first");
  while (at < file.size() && !parts.hasBinary) {  // chunks of other types are to be passed over
    const std::string_view chunk = takeChunk(file, at, type);
    if (type != kBinaryChunk) continue;
    parts.binary = chunk;
    parts.hasBinary = true;
  }
  return parts;
}

json parseJson(std::string_view text) {
  const auto bounded = [](int depth, json::parse_event_t, json&) {
    if (depth > kDeepestJson)
      throw SceneError("expected JSON at most " + std::to_string(kDeepestJson) + " levels deep");
    return true;
  };
  try {
    return json::parse(text.begin(), text.end(), bounded);
  } catch (const json::exception& e) {
    throw SceneError(std::string("expected JSON: ") + e.what());
  }
}

// Before all else, so that a file of another version is called that and not malformed.
void checkVersion(const json& document) {
  const auto asset = document.find("asset");  // none in a value that is no object
  const json version = asset != document.end() && asset->is_object() ? asset->value("version", json()) : json();
  if (!version.is_string() || version.get<std::string>().rfind("2.", 0) != 0)
    throw SceneError("asset.version: expected \"2.x\", got " + (version.is_null() ? "nothing" : shown(version)));
}

void checkExtensions(const json& document) {
  for (const json& name : document.value("extensionsRequired", json::array()))
    if (!kKnownExtensions.count(name.get<std::string>()))
      throw SceneError("extensionsRequired: the extension " + shown(name) + " is not supported");
}

Bytes readBuffer(const json& buffer, std::size_t index, const Parts& parts, const std::string& folder) {
  const std::string place = "buffers[" + std::to_string(index) + "]";
  Bytes bytes;
  if (const auto uri = buffer.find("uri"); uri == buffer.end()) {
    if (index != 0 || !parts.hasBinary) throw SceneError(place + ".uri: expected text, got nothing");
    bytes.assign(parts.binary.begin(), parts.binary.end());
  } else if (const auto& text = uri->get_ref<const std::string&>(); isDataUri(text)) {
    bytes = decodeDataUri(text, place + ".uri");
  } else {
    try {
      bytes = readFile(resolveName(folder, decodePercent(text)));
    } catch (const SceneError& e) {
      throw SceneError(place + ".uri: " + e.what());
    }
  }
  const auto expected = buffer["byteLength"].get<std::uint64_t>();
  if (bytes.size() < expected)
    throw SceneError(place + ": expected " + std::to_string(expected) + " bytes, got " + std::to_string(bytes.size()));
  return bytes;
}

// A channel may name no node, for the sake of extensions; the library takes that for an error.
void dropChannelsWithoutNode(json& document) {
  if (!document.contains("animations")) return;
  for (json& animation : document["animations"]) {
    json& channels = animation["channels"];
    for (auto it = channels.begin(); it != channels.end();)
      it = it->at("target").contains("node") ? it + 1 : channels.erase(it);
  }
}

// Structure alone: buffers and images are kept from the library, so it touches no file and no unchecked offset.
void parseStructure(GltfDocument& document) {
  json images = json::array();
  if (document.json.contains("images")) document.json["images"].swap(images);
  dropChannelsWithoutNode(document.json);
  const std::string text = document.json.dump();
  if (document.json.contains("images")) document.json["images"].swap(images);
  std::string errors, warnings;
  tinygltf::TinyGLTF library;
  bool parsed = false;
  try {
    parsed = library.LoadASCIIFromString(&document.model, &errors, &warnings, text.data(),
                                         static_cast<unsigned int>(text.size()), "");
  } catch (const std::exception& e) {
    errors += e.what();
  }
  if (!parsed || !errors.empty()) {
    while (!errors.empty() && errors.back() == '\n') errors.pop_back();
    throw SceneError(errors.empty() ? "not a glTF document" : errors);
  }
}

}  // namespace

Bytes readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  const std::streamoff size = file ? static_cast<std::streamoff>(file.tellg()) : -1;
  // Opening a folder succeeds and gives no sensible size.
  if (size < 0 || size > (std::streamoff{1} << 40)) throw SceneError("cannot read the file " + path);
  Bytes bytes(static_cast<std::size_t>(size));
  file.seekg(0);
  if (size > 0) file.read(reinterpret_cast<char*>(bytes.data()), size);
  if (!file) throw SceneError("cannot read the file " + path);
  return bytes;
}

GltfDocument readGltf(const std::string& path) {
  const Bytes file = readFile(path);
  const Parts parts = splitFile({reinterpret_cast<const char*>(file.data()), file.size()});
  GltfDocument document;
  document.folder = folderOf(path);
  document.json = parseJson(parts.jsonText);
  checkVersion(document.json);
  checkGltfRules(document.json);
  checkExtensions(document.json);
  if (const auto buffers = document.json.find("buffers"); buffers != document.json.end()) {
    for (const json& buffer : *buffers)
      document.buffers.push_back(readBuffer(buffer, document.buffers.size(), parts, document.folder));
    document.json.erase(buffers);
  }
  parseStructure(document);
  return document;
}

bool isDataUri(std::string_view uri) { return uri.substr(0, 5) == "data:"; }

Bytes decodeDataUri(const std::string& uri, const std::string& place) {
  constexpr std::string_view kMarker = ";base64,";
  const std::size_t marker = uri.find(kMarker);
  if (marker == std::string::npos || marker > uri.find(',')) throw SceneError(place + ": expected base64 data");
  static const std::array<int, 256> kDigits = [] {
    std::array<int, 256> digits{};
    digits.fill(-1);
    constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t i = 0; i < kAlphabet.size(); ++i)
      digits[static_cast<unsigned char>(kAlphabet[i])] = static_cast<int>(i);
    return digits;
  }();
  std::string_view text = std::string_view(uri).substr(marker + kMarker.size());
  while (!text.empty() && text.back() == '=') text.remove_suffix(1);
  Bytes bytes;
  bytes.reserve(text.size() * 3 / 4);
  unsigned int gathered = 0;
  int bits = 0;
  for (const char c : text) {
    const int digit = kDigits[static_cast<unsigned char>(c)];
    if (digit < 0) throw SceneError(place + ": expected base64 data, got the character " + shown(std::string(1, c)));
    gathered = (gathered << 6 | static_cast<unsigned int>(digit)) & 0xFFFFFF;
    bits += 6;
    if (bits >= 8) {
      bits -= 8;
      bytes.push_back(static_cast<unsigned char>(gathered >> bits));
    }
  }
  return bytes;
}

}  // namespace standin::scene
