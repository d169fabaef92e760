#include "standin/scene/gltf_parts.h"

#include <algorithm>
#include <map>

#include "standin/scene/file_search.h"
#include "standin/scene/gltf_rules.h"
#include "standin/scene/image_decoding.h"

namespace standin::scene {

namespace {

using nlohmann::json;

// An element of one of the document's lists.
const json& element(const GltfDocument& document, const char* list, int index) {
  return document.json.at(list).at(static_cast<std::size_t>(index));
}

// Loads each image once for each of the two ways to read it.
class ImageLoader {
 public:
  ImageLoader(const GltfDocument& document, const LoadOptions& options, Scene& scene)
      : document_(document), options_(options), scene_(scene) {}

  // Index in scene.images, or kNone for one that is a problem of the scene.
  int load(int image, Transfer transfer) {
    const auto [known, isNew] = loaded_.try_emplace({image, transfer}, kNone);
    if (isNew) known->second = loadNew(image, transfer);
    return known->second;
  }

 private:
  int loadNew(int index, Transfer transfer) {
    const json& source = element(document_, "images", index);
    const std::string place = "images[" + std::to_string(index) + "]";
    Image image;
    image.name = source.value("name", "");
    Bytes bytes;
    if (const auto uri = source.find("uri"); uri == source.end()) {
      bytes = fromBufferView(source, place);
    } else if (const auto& text = uri->get_ref<const std::string&>(); isDataUri(text)) {
      bytes = decodeDataUri(text, place + ".uri");
    } else {
      const std::string name = decodePercent(text);
      if (image.name.empty()) image.name = name;
      const std::string path = findFile(document_.folder, name, options_.textureFolders);
      if (path.empty()) return problem("Missing texture file: " + name);
      bytes = readFile(path);
    }
    if (image.name.empty()) image.name = place;
    const std::string failure = decodeImage(bytes, transfer, image);
    if (!failure.empty()) return problem("Texture that cannot be read: " + image.name + " (" + failure + ")");
    scene_.images.push_back(std::move(image));
    return static_cast<int>(scene_.images.size()) - 1;
  }

  Bytes fromBufferView(const json& source, const std::string& place) const {
    if (!source.contains("bufferView")) throw SceneError(place + ".uri: expected text, got nothing");
    const auto index = source["bufferView"].get<std::size_t>();
    const tinygltf::BufferView& view = document_.model.bufferViews[index];
    const Bytes& buffer = document_.buffers[static_cast<std::size_t>(view.buffer)];
    if (view.byteOffset + view.byteLength > buffer.size())
      throw SceneError("bufferViews[" + std::to_string(index) + "]: expected its end within the buffer's " +
                       std::to_string(buffer.size()) + " bytes, got " +
                       std::to_string(view.byteOffset + view.byteLength));
    const unsigned char* first = buffer.data() + view.byteOffset;
    return {first, first + view.byteLength};
  }

  // Told once, even if the image is wanted in both ways.
  int problem(const std::string& message) {
    const auto same = [&message](const LoadProblem& p) { return p.message == message; };
    if (std::none_of(scene_.problems.begin(), scene_.problems.end(), same))
      scene_.problems.push_back({LoadProblem::Kind::missingTexture, message});
    return kNone;
  }

  const GltfDocument& document_;
  const LoadOptions& options_;
  Scene& scene_;
  std::map<std::pair<int, Transfer>, int> loaded_;
};

Texture::Wrap wrapMode(int mode, const std::string& place) {
  switch (mode) {
    case TINYGLTF_TEXTURE_WRAP_REPEAT:
      return Texture::Wrap::repeat;
    case TINYGLTF_TEXTURE_WRAP_MIRRORED_REPEAT:
      return Texture::Wrap::mirror;
    case TINYGLTF_TEXTURE_WRAP_CLAMP_TO_EDGE:
      return Texture::Wrap::clamp;
    default:
      throw SceneError(place + ": expected 10497, 33071 or 33648, got " + std::to_string(mode));
  }
}

void readSampler(const GltfDocument& document, int index, Texture& texture) {
  const json& sampler = element(document, "samplers", index);
  const std::string place = "samplers[" + std::to_string(index) + "]";
  texture.wrapU = wrapMode(sampler.value("wrapS", TINYGLTF_TEXTURE_WRAP_REPEAT), place + ".wrapS");
  texture.wrapV = wrapMode(sampler.value("wrapT", TINYGLTF_TEXTURE_WRAP_REPEAT), place + ".wrapT");
  texture.nearest = sampler.value("magFilter", 0) == TINYGLTF_TEXTURE_FILTER_NEAREST;
}

void readTransform(const json& transform, Texture& texture) {
  const auto pair = [&transform](const char* key, Vec2 otherwise) {
    const auto found = transform.find(key);
    return found == transform.end() ? otherwise : Vec2{found->at(0).get<float>(), found->at(1).get<float>()};
  };
  texture.offset = pair("offset", {0, 0});
  texture.scale = pair("scale", {1, 1});
  texture.rotation = transform.value("rotation", 0.0F);
  texture.texCoord = transform.value("texCoord", texture.texCoord);
}

class MaterialReader {
 public:
  MaterialReader(const GltfDocument& document, const LoadOptions& options, Scene& scene)
      : document_(document), scene_(scene), images_(document, options, scene) {}

  Material read(const json& source, const std::string& place) {
    Material material;
    material.name = source.value("name", "");
    const json empty = json::object();
    const json& surface = source.contains("pbrMetallicRoughness") ? source["pbrMetallicRoughness"] : empty;
    const json& extensions = source.contains("extensions") ? source["extensions"] : empty;
    const auto base = surface.value("baseColorFactor", std::vector<float>{1, 1, 1, 1});
    const auto emission = source.value("emissiveFactor", std::vector<float>{0, 0, 0});
    const json& strength = extensions.value("KHR_materials_emissive_strength", empty);
    material.baseColor = {base[0], base[1], base[2], base[3]};
    material.metallic = std::clamp(surface.value("metallicFactor", 1.0F), 0.0F, 1.0F);
    material.roughness = std::clamp(surface.value("roughnessFactor", 1.0F), 0.0F, 1.0F);
    material.emission = Vec3{emission[0], emission[1], emission[2]} * strength.value("emissiveStrength", 1.0F);
    material.alphaMode = alphaMode(source.value("alphaMode", "OPAQUE"), place);
    material.alphaCutoff = source.value("alphaCutoff", 0.5F);
    material.doubleSided = source.value("doubleSided", false);
    material.unlit = extensions.contains("KHR_materials_unlit");

    material.baseColorTexture = texture(surface, "baseColorTexture", Transfer::srgb, place);
    material.metallicRoughnessTexture = texture(surface, "metallicRoughnessTexture", Transfer::linear, place);
    material.normalTexture = texture(source, "normalTexture", Transfer::linear, place);
    material.emissionTexture = texture(source, "emissiveTexture", Transfer::srgb, place);
    if (material.normalTexture) material.normalScale = source["normalTexture"].value("scale", 1.0F);
    return material;
  }

 private:
  static Material::Alpha alphaMode(const std::string& mode, const std::string& place) {
    if (mode == "OPAQUE") return Material::Alpha::opaque;
    if (mode == "MASK") return Material::Alpha::mask;
    if (mode == "BLEND") return Material::Alpha::blend;
    throw SceneError(place + ".alphaMode: expected OPAQUE, MASK or BLEND, got " + shown(mode));
  }

  std::optional<Texture> texture(const json& holder, const char* key, Transfer transfer, const std::string& place) {
    const auto info = holder.find(key);
    if (info == holder.end()) return std::nullopt;
    const json& source = element(document_, "textures", info->at("index").get<int>());
    Texture texture;
    texture.texCoord = info->value("texCoord", 0);
    if (source.contains("sampler")) readSampler(document_, source["sampler"].get<int>(), texture);
    if (const auto extensions = info->find("extensions"); extensions != info->end())
      if (const auto transform = extensions->find("KHR_texture_transform"); transform != extensions->end())
        readTransform(*transform, texture);
    const std::string name = place + "." + key;
    if (texture.texCoord > 1) return passedOver(name + ": texture coordinate sets above 1 are not supported");
    if (!source.contains("source")) return passedOver(name + ": the texture has no image of a supported kind");
    texture.image = images_.load(source["source"].get<int>(), transfer);
    return texture.image == kNone ? std::nullopt : std::optional(texture);
  }

  std::optional<Texture> passedOver(const std::string& why) {
    scene_.warnings.push_back(why + "; the texture is passed over");
    return std::nullopt;
  }

  const GltfDocument& document_;
  Scene& scene_;
  ImageLoader images_;
};

}  // namespace

void loadMaterials(const GltfDocument& document, const LoadOptions& options, Scene& scene) {
  const auto materials = document.json.find("materials");
  if (materials == document.json.end()) return;
  MaterialReader reader(document, options, scene);
  for (std::size_t i = 0; i < materials->size(); ++i)
    scene.materials.push_back(reader.read((*materials)[i], "materials[" + std::to_string(i) + "]"));
}

}  // namespace standin::scene
