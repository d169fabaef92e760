// Makes small glTF files for tests.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace standin::scene::test {

// A document with one buffer that grows. `json` may be edited freely between the calls.
class SceneBuilder {
 public:
  SceneBuilder();

  nlohmann::json json;

  // Each appends the numbers as one buffer view and returns its index.
  template <class Number>
  int view(const std::vector<Number>& numbers) {
    return viewOfBytes({reinterpret_cast<const char*>(numbers.data()), numbers.size() * sizeof(Number)});
  }
  int viewOfBytes(const std::string& bytes);

  // An accessor over a view; count elements of a type such as "VEC3". Returns its index.
  int accessor(int view, int componentType, const std::string& type, std::size_t count);
  int floats(const std::vector<float>& numbers, const std::string& type);
  int indices(const std::vector<std::uint16_t>& numbers);

  // Appends an element to a list of the document; returns its index.
  int add(const std::string& list, const nlohmann::json& element);

  // A triangle (0,0,0) (1,0,0) (0,1,0) as a mesh, one root node that shows it, and a scene; returns the node's index.
  int addTriangle();

  std::string gltf() const;  // text, the buffer in a data URI
  std::string glb() const;   // binary

 private:
  std::string buffer_;
};

std::string base64(const std::string& bytes);

// An uncompressed 24-bit TGA picture of RGB bytes, from the top left.
std::string tga(int width, int height, const std::vector<std::uint8_t>& rgb);

constexpr int kByte = 5120, kUnsignedByte = 5121, kShort = 5122, kUnsignedShort = 5123, kUnsignedInt = 5125,
              kFloat = 5126;

}  // namespace standin::scene::test
