// Reads vertex, index and key data out of a document's buffers.
#pragma once

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "standin/scene/gltf_document.h"

namespace standin::scene {

// Every read checks the accessor against its buffer view and buffer first, applies sparse values, and throws SceneError
// naming the accessor and `use` when something does not fit or a number is not finite.
class Accessors {
 public:
  // Borrows the document.
  explicit Accessors(const GltfDocument& document) : document_(document) {}

  std::size_t count(int accessor) const;
  // 1 to 16: numbers an element.
  int components(int accessor) const;

  // All elements one after the other, `components` floats each. Integers are converted; normalised ones to 0..1 or
  // -1..1.
  std::vector<float> floats(int accessor, int components, const std::string& use) const;

  // The same as elements of a type made of floats only, such as Vec3.
  template <class Element>
  std::vector<Element> elements(int accessor, const std::string& use) const {
    static_assert(std::is_trivially_copyable_v<Element> && sizeof(Element) % sizeof(float) == 0);
    std::vector<Element> out(count(accessor));
    readFloats(accessor, static_cast<int>(sizeof(Element) / sizeof(float)), use, out.data());
    return out;
  }

  // Unsigned integers, as they stand in the file.
  std::vector<std::uint32_t> indices(int accessor, const std::string& use) const;

 private:
  void readFloats(int accessor, int components, const std::string& use, void* out) const;

  const GltfDocument& document_;
};

}  // namespace standin::scene
