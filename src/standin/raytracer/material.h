// Materials with their textures bound, and what they say at one point of a surface.
#pragma once

#include <vector>

#include "standin/raytracer/texture.h"

namespace standin::raytracer {

// A point's texture coordinates and how much of the texture one sample stands for there.
struct TexturePoint {
  Vec2 uv[2];  // the two sets
  bool present[2] = {false, false};
  float footprint[2] = {0, 0};  // side length in uv units
  Vec4 vertexColor{1, 1, 1, 1};
};

struct MaterialPoint {
  Vec3 baseColor;
  float metallic, roughness;
  Vec3 emission;
};

// A texture whose coordinates the mesh lacks is left out: the factor stands alone.
class SurfaceMaterial {
 public:
  SurfaceMaterial(const scene::Material& material, const ImageStore& images);

  bool opaque() const { return alphaMode_ == scene::Material::Alpha::opaque; }
  bool doubleSided() const { return doubleSided_; }
  bool unlit() const { return unlit_; }
  bool hasNormalMap() const { return static_cast<bool>(normal_); }
  // The texture coordinate set of the normal map.
  int normalTexCoord() const { return normal_.texCoord(); }

  // How much of the light from behind the point stops: 0 or 1 for masks.
  float opacity(const TexturePoint& at) const;
  MaterialPoint evaluate(const TexturePoint& at) const;
  // The normal map's vector, tangent, bitangent, normal; not of unit length. Needs hasNormalMap().
  Vec3 tangentNormal(const TexturePoint& at) const;

 private:
  Vec4 baseColor(const TexturePoint& at) const;

  Vec4 baseColorFactor_;
  float metallic_, roughness_;
  Vec3 emission_;
  float normalScale_;
  TextureLookup baseColor_, metallicRoughness_, normal_, emissive_;
  scene::Material::Alpha alphaMode_;
  float alphaCutoff_;
  bool doubleSided_, unlit_;
};

// The scene's materials, and behind them the default material for primitives without one.
class MaterialTable {
 public:
  MaterialTable(const std::vector<scene::Material>& materials, const ImageStore& images);
  const SurfaceMaterial& operator[](int material) const;

 private:
  std::vector<SurfaceMaterial> materials_;
};

}  // namespace standin::raytracer
