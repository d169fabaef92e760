#include "standin/raytracer/material.h"

namespace standin::raytracer {

namespace {

TextureLookup bind(const std::optional<scene::Texture>& texture, const ImageStore& images) {
  return texture ? TextureLookup(*texture, images) : TextureLookup();
}

// White where there is no texture.
Vec4 look(const TextureLookup& texture, const TexturePoint& at) {
  const auto set = static_cast<std::size_t>(texture.texCoord() == 1 ? 1 : 0);
  if (!texture || !at.present[set]) return {1, 1, 1, 1};
  return texture.sample(at.uv[set], at.footprint[set]);
}

Vec3 rgb(Vec4 v) { return {v.x, v.y, v.z}; }

}  // namespace

SurfaceMaterial::SurfaceMaterial(const scene::Material& material, const ImageStore& images)
    : baseColorFactor_(material.baseColor),
      metallic_(material.metallic),
      roughness_(material.roughness),
      emission_(material.emission),
      normalScale_(material.normalScale),
      baseColor_(bind(material.baseColorTexture, images)),
      metallicRoughness_(bind(material.metallicRoughnessTexture, images)),
      normal_(bind(material.normalTexture, images)),
      emissive_(bind(material.emissionTexture, images)),
      alphaMode_(material.alphaMode),
      alphaCutoff_(material.alphaCutoff),
      doubleSided_(material.doubleSided),
      unlit_(material.unlit) {}

Vec4 SurfaceMaterial::baseColor(const TexturePoint& at) const {
  const Vec4 texel = look(baseColor_, at), factor = baseColorFactor_, vertex = at.vertexColor;
  return {factor.x * texel.x * vertex.x, factor.y * texel.y * vertex.y, factor.z * texel.z * vertex.z,
          factor.w * texel.w * vertex.w};
}

float SurfaceMaterial::opacity(const TexturePoint& at) const {
  switch (alphaMode_) {
    case scene::Material::Alpha::mask:
      return baseColor(at).w >= alphaCutoff_ ? 1.0F : 0.0F;
    case scene::Material::Alpha::blend:
      return saturate(baseColor(at).w);
    case scene::Material::Alpha::opaque:
      break;
  }
  return 1;
}

MaterialPoint SurfaceMaterial::evaluate(const TexturePoint& at) const {
  const Vec4 surface = look(metallicRoughness_, at);  // green is the roughness, blue the metal
  return {rgb(baseColor(at)), metallic_ * surface.z, roughness_ * surface.y, emission_ * rgb(look(emissive_, at))};
}

Vec3 SurfaceMaterial::tangentNormal(const TexturePoint& at) const {
  const Vec4 texel = look(normal_, at);
  return {(2 * texel.x - 1) * normalScale_, (2 * texel.y - 1) * normalScale_, 2 * texel.z - 1};
}

MaterialTable::MaterialTable(const std::vector<scene::Material>& materials, const ImageStore& images) {
  materials_.reserve(materials.size() + 1);
  for (const scene::Material& material : materials) materials_.emplace_back(material, images);
  materials_.emplace_back(scene::Material{}, images);
}

const SurfaceMaterial& MaterialTable::operator[](int material) const {
  const std::size_t fallback = materials_.size() - 1;
  const auto index = static_cast<std::size_t>(material);
  return materials_[material >= 0 && index < fallback ? index : fallback];
}

}  // namespace standin::raytracer
