#include "standin/scene/gltf_accessors.h"

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>

#include "standin/scene/scene_error.h"

namespace standin::scene {

namespace {

// Elements without a buffer view are zeros that no file size bounds.
constexpr std::size_t kMostZeros = std::size_t{1} << 24;

// Elements in a buffer, known to lie inside it. No base: all zeros.
struct Span {
  const unsigned char* base = nullptr;
  std::size_t count = 0, stride = 0;
};

std::string placeOf(int accessor, const std::string& use) {
  return "accessors[" + std::to_string(accessor) + "] (" + use + ")";
}

std::size_t componentSize(int type, const std::string& place) {
  switch (type) {
    case TINYGLTF_COMPONENT_TYPE_BYTE:
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
      return 1;
    case TINYGLTF_COMPONENT_TYPE_SHORT:
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT:
      return 2;
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT:
    case TINYGLTF_COMPONENT_TYPE_FLOAT:
      return 4;
    default:
      throw SceneError(place + ".componentType: expected 5120 to 5123, 5125 or 5126, got " + std::to_string(type));
  }
}

// Elements of `size` bytes from `offset` of a buffer view on. No sum here can overflow: the format rules keep offsets
// below 2^48 and counts below 2^29.
Span spanOf(const GltfDocument& document, int viewIndex, std::size_t offset, std::size_t count, std::size_t size,
            bool strided, const std::string& place) {
  const tinygltf::BufferView& view = document.model.bufferViews[static_cast<std::size_t>(viewIndex)];
  const Bytes& buffer = document.buffers[static_cast<std::size_t>(view.buffer)];
  const std::string viewPlace = "bufferViews[" + std::to_string(viewIndex) + "]";
  if (view.byteOffset + view.byteLength > buffer.size())
    throw SceneError(viewPlace + ": expected its end within the buffer's " + std::to_string(buffer.size()) +
                     " bytes, got " + std::to_string(view.byteOffset + view.byteLength));
  const std::size_t stride = strided && view.byteStride != 0 ? view.byteStride : size;
  if (stride < size)
    throw SceneError(viewPlace + ".byteStride: expected at least the element's " + std::to_string(size) +
                     " bytes, got " + std::to_string(stride));
  const std::size_t end = count == 0 ? 0 : offset + (count - 1) * stride + size;
  if (end > view.byteLength)
    throw SceneError(place + ": expected its end within " + viewPlace + "'s " + std::to_string(view.byteLength) +
                     " bytes, got " + std::to_string(end));
  return {buffer.data() + view.byteOffset + offset, count, stride};
}

template <class Integer>
float toFloat(Integer value, bool normalized) {
  if constexpr (std::is_floating_point_v<Integer>) {
    return value;
  } else {
    if (!normalized) return static_cast<float>(value);
    return std::max(static_cast<float>(value) / static_cast<float>(std::numeric_limits<Integer>::max()), -1.0F);
  }
}

template <class Component>
void convert(const Span& span, std::size_t components, bool normalized, float* out) {
  for (std::size_t i = 0; i < span.count; ++i) {
    for (std::size_t c = 0; c < components; ++c) {
      Component value;
      std::memcpy(&value, span.base + i * span.stride + c * sizeof(Component), sizeof(Component));
      *out++ = toFloat(value, normalized);
    }
  }
}

void convert(const Span& span, int type, std::size_t components, bool normalized, float* out) {
  if (span.base == nullptr) {
    std::fill_n(out, span.count * components, 0.0F);
    return;
  }
  switch (type) {
    case TINYGLTF_COMPONENT_TYPE_BYTE:
      return convert<std::int8_t>(span, components, normalized, out);
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
      return convert<std::uint8_t>(span, components, normalized, out);
    case TINYGLTF_COMPONENT_TYPE_SHORT:
      return convert<std::int16_t>(span, components, normalized, out);
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT:
      return convert<std::uint16_t>(span, components, normalized, out);
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT:
      return convert<std::uint32_t>(span, components, normalized, out);
    default:
      break;
  }
  if (span.stride == components * sizeof(float) && span.count > 0)
    std::memcpy(out, span.base, span.count * span.stride);
  else
    convert<float>(span, components, normalized, out);
}

template <class Integer>
void widen(const Span& span, std::uint32_t* out) {
  for (std::size_t i = 0; i < span.count; ++i) {
    Integer value;
    std::memcpy(&value, span.base + i * span.stride, sizeof(Integer));
    out[i] = value;
  }
}

std::vector<std::uint32_t> unsignedIntegers(const Span& span, int type, const std::string& place) {
  std::vector<std::uint32_t> out(span.count);
  if (span.base == nullptr) return out;
  switch (type) {
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
      widen<std::uint8_t>(span, out.data());
      break;
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT:
      widen<std::uint16_t>(span, out.data());
      break;
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT:
      widen<std::uint32_t>(span, out.data());
      break;
    default:
      throw SceneError(place + ".componentType: expected 5121, 5123 or 5125, got " + std::to_string(type));
  }
  return out;
}

// Which elements a sparse accessor replaces.
std::vector<std::uint32_t> sparseIndices(const GltfDocument& document, const tinygltf::Accessor& accessor,
                                         const std::string& place) {
  const auto& sparse = accessor.sparse;
  const int type = sparse.indices.componentType;
  const Span span =
      spanOf(document, sparse.indices.bufferView, static_cast<std::size_t>(sparse.indices.byteOffset),
             static_cast<std::size_t>(sparse.count), componentSize(type, place), false, place + ".sparse.indices");
  std::vector<std::uint32_t> indices = unsignedIntegers(span, type, place + ".sparse.indices");
  for (const std::uint32_t index : indices)
    if (index >= accessor.count)
      throw SceneError(place + ".sparse.indices: expected indices below " + std::to_string(accessor.count) + ", got " +
                       std::to_string(index));
  return indices;
}

void checkFinite(const float* values, std::size_t count, const std::string& place) {
  bool finite = true;
  for (std::size_t i = 0; i < count; ++i) finite &= std::fabs(values[i]) <= FLT_MAX;
  if (!finite) throw SceneError(place + ": expected finite numbers, got infinite ones or none (NaN)");
}

}  // namespace

std::size_t Accessors::count(int accessor) const {
  return document_.model.accessors[static_cast<std::size_t>(accessor)].count;
}

int Accessors::components(int accessor) const {
  const int type = document_.model.accessors[static_cast<std::size_t>(accessor)].type;
  return tinygltf::GetNumComponentsInType(static_cast<std::uint32_t>(type));
}

std::vector<float> Accessors::floats(int accessor, int components, const std::string& use) const {
  std::vector<float> out(count(accessor) * static_cast<std::size_t>(components));
  readFloats(accessor, components, use, out.data());
  return out;
}

void Accessors::readFloats(int index, int wanted, const std::string& use, void* out) const {
  const tinygltf::Accessor& accessor = document_.model.accessors[static_cast<std::size_t>(index)];
  const std::string place = placeOf(index, use);
  if (components(index) != wanted)
    throw SceneError(place + ": expected " + std::to_string(wanted) + " numbers an element, got " +
                     std::to_string(components(index)));
  const auto width = static_cast<std::size_t>(wanted);
  const std::size_t size = width * componentSize(accessor.componentType, place);
  Span span{nullptr, accessor.count, size};
  if (accessor.bufferView < 0 && accessor.count > kMostZeros)
    throw SceneError(place + ": expected at most " + std::to_string(kMostZeros) +
                     " elements without a buffer view, got " + std::to_string(accessor.count));
  if (accessor.bufferView >= 0)
    span = spanOf(document_, accessor.bufferView, accessor.byteOffset, accessor.count, size, true, place);
  auto* numbers = static_cast<float*>(out);
  convert(span, accessor.componentType, width, accessor.normalized, numbers);

  if (accessor.sparse.isSparse) {
    const std::vector<std::uint32_t> replaced = sparseIndices(document_, accessor, place);
    const auto& values = accessor.sparse.values;
    const Span from = spanOf(document_, values.bufferView, static_cast<std::size_t>(values.byteOffset), replaced.size(),
                             size, false, place + ".sparse.values");
    std::vector<float> replacements(replaced.size() * width);
    convert(from, accessor.componentType, width, accessor.normalized, replacements.data());
    for (std::size_t i = 0; i < replaced.size(); ++i)
      std::copy_n(replacements.data() + i * width, width, numbers + replaced[i] * width);
  }
  checkFinite(numbers, accessor.count * width, place);
}

std::vector<std::uint32_t> Accessors::indices(int index, const std::string& use) const {
  const tinygltf::Accessor& accessor = document_.model.accessors[static_cast<std::size_t>(index)];
  const std::string place = placeOf(index, use);
  if (components(index) != 1)
    throw SceneError(place + ": expected 1 number an element, got " + std::to_string(components(index)));
  if (accessor.bufferView < 0 || accessor.sparse.isSparse)
    throw SceneError(place + ": expected indices from a buffer view, not sparse ones");
  const std::size_t size = componentSize(accessor.componentType, place);
  const Span span = spanOf(document_, accessor.bufferView, accessor.byteOffset, accessor.count, size, true, place);
  return unsignedIntegers(span, accessor.componentType, place);
}

}  // namespace standin::scene
