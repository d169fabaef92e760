// Images as the shading code reads them: filtered, wrapped, and smaller with distance.
#pragma once

#include <span>
#include <vector>

#include "standin/raytracer/vector.h"
#include "standin/scene/description.h"

namespace standin::raytracer {

// The images of a scene with their halved, quartered, ... copies, so that a distant surface reads one texel for many.
class ImageStore {
 public:
  // Refers to the texels of `images`, which must outlive the store and keep their place.
  explicit ImageStore(const std::vector<scene::Image>& images);

  struct Level {
    int width = 0, height = 0;
    const float* texels = nullptr;  // 4 floats each, rows from the top
  };
  // From full size down to a single texel. Empty for an index that names no image or an image without texels.
  std::span<const Level> levels(int image) const;

 private:
  struct Pyramid {
    std::vector<Level> levels;
    std::vector<std::vector<float>> reduced;  // owns the texels of every level but the first
  };
  std::vector<Pyramid> pyramids_;
};

// A texture bound to its image.
class TextureLookup {
 public:
  TextureLookup() = default;  // of no texture
  TextureLookup(const scene::Texture& texture, const ImageStore& images);

  explicit operator bool() const { return !levels_.empty(); }
  int texCoord() const { return texCoord_; }

  // The colour at `uv`. `footprint` is the side length of the surface patch that one sample stands for, in uv units; 0
  // reads the full-size image.
  Vec4 sample(Vec2 uv, float footprint) const;

 private:
  Vec4 sampleLevel(const ImageStore::Level& level, Vec2 uv) const;

  std::span<const ImageStore::Level> levels_;
  scene::Texture::Wrap wrapU_ = scene::Texture::Wrap::repeat, wrapV_ = scene::Texture::Wrap::repeat;
  bool nearest_ = false;
  int texCoord_ = 0;
  // uv' = (uAxis * u + vAxis * v) + offset
  Vec2 uAxis_{1, 0}, vAxis_{0, 1}, offset_{0, 0};
  float footprintScale_ = 1;  // texels a uv unit
};

}  // namespace standin::raytracer
