#include "scene_builder.h"

namespace standin::scene::test {

namespace {

std::string word(std::uint32_t value) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift & 0xFF);
  return bytes;
}

std::string chunk(std::uint32_t type, std::string content, char padding) {
  while (content.size() % 4 != 0) content += padding;
  return word(static_cast<std::uint32_t>(content.size())) + word(type) + content;
}

}  // namespace

SceneBuilder::SceneBuilder()
    : json{{"asset", {{"version", "2.0"}}}, {"scene", 0}, {"scenes", {{{"nodes", nlohmann::json::array()}}}}} {}

int SceneBuilder::viewOfBytes(const std::string& bytes) {
  const std::size_t offset = buffer_.size();
  buffer_ += bytes;
  while (buffer_.size() % 4 != 0) buffer_ += '\0';
  return add("bufferViews", {{"buffer", 0}, {"byteOffset", offset}, {"byteLength", bytes.size()}});
}

int SceneBuilder::accessor(int view, int componentType, const std::string& type, std::size_t count) {
  return add("accessors", {{"bufferView", view}, {"componentType", componentType}, {"type", type}, {"count", count}});
}

int SceneBuilder::floats(const std::vector<float>& numbers, const std::string& type) {
  const std::size_t width = type == "SCALAR" ? 1 : static_cast<std::size_t>(type.back() - '0');
  return accessor(view(numbers), kFloat, type, numbers.size() / width);
}

int SceneBuilder::indices(const std::vector<std::uint16_t>& numbers) {
  return accessor(view(numbers), kUnsignedShort, "SCALAR", numbers.size());
}

int SceneBuilder::add(const std::string& list, const nlohmann::json& element) {
  json[list].push_back(element);
  return static_cast<int>(json[list].size()) - 1;
}

int SceneBuilder::addTriangle() {
  const int positions = floats({0, 0, 0, 1, 0, 0, 0, 1, 0}, "VEC3");
  const nlohmann::json primitive{{"attributes", {{"POSITION", positions}}}};
  const int mesh = add("meshes", {{"name", "Triangle"}, {"primitives", {primitive}}});
  const int node = add("nodes", {{"mesh", mesh}});
  json["scenes"][0]["nodes"].push_back(node);
  return node;
}

std::string SceneBuilder::gltf() const {
  nlohmann::json whole = json;
  if (!buffer_.empty() && !whole.contains("buffers"))
    whole["buffers"] = {
        {{"byteLength", buffer_.size()}, {"uri", "data:application/octet-stream;base64," + base64(buffer_)}}};
  return whole.dump();
}

std::string SceneBuilder::glb() const {
  nlohmann::json whole = json;
  whole["buffers"] = {{{"byteLength", buffer_.size()}}};
  const std::string chunks = chunk(0x4E4F534A, whole.dump(), ' ') + chunk(0x004E4942, buffer_, '\0');
  return "glTF" + word(2) + word(static_cast<std::uint32_t>(12 + chunks.size())) + chunks;
}

std::string base64(const std::string& bytes) {
  static const std::string kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k)
      group = group << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0);
    for (std::size_t k = 0; k < 4; ++k) text += i + k <= bytes.size() ? kAlphabet[group >> (18 - 6 * k) & 63] : '=';
  }
  return text;
}

std::string tga(int width, int height, const std::vector<std::uint8_t>& rgb) {
  std::string bytes(18, '\0');
  bytes[2] = 2;  // true colour, uncompressed
  bytes[12] = static_cast<char>(width);
  bytes[14] = static_cast<char>(height);
  bytes[16] = 24;
  bytes[17] = 0x20;  // from the top
  for (std::size_t i = 0; i < rgb.size(); i += 3)
    for (std::size_t c = 3; c-- > 0;) bytes += static_cast<char>(rgb[i + c]);
  return bytes;
}

}  // namespace standin::scene::test
