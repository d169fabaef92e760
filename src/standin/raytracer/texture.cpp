#include "standin/raytracer/texture.h"

#include <cstddef>

namespace standin::raytracer {

namespace {

using scene::Texture;

std::vector<float> halve(const ImageStore::Level& from, int width, int height) {
  std::vector<float> texels(static_cast<std::size_t>(width) * height * 4);
  const auto texel = [&](int x, int y) {
    return from.texels + (static_cast<std::size_t>(std::min(y, from.height - 1)) * from.width +
                          static_cast<std::size_t>(std::min(x, from.width - 1))) *
                             4;
  };
  float* out = texels.data();
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x, out += 4) {
      const float *a = texel(2 * x, 2 * y), *b = texel(2 * x + 1, 2 * y);
      const float *c = texel(2 * x, 2 * y + 1), *d = texel(2 * x + 1, 2 * y + 1);
      for (int i = 0; i < 4; ++i) out[i] = 0.25F * (a[i] + b[i] + c[i] + d[i]);
    }
  }
  return texels;
}

int wrap(int texel, int size, Texture::Wrap mode) {
  switch (mode) {
    case Texture::Wrap::clamp:
      return std::clamp(texel, 0, size - 1);
    case Texture::Wrap::mirror: {
      int t = texel % (2 * size);
      if (t < 0) t += 2 * size;
      return t < size ? t : 2 * size - 1 - t;
    }
    case Texture::Wrap::repeat:
      break;
  }
  const int t = texel % size;
  return t < 0 ? t + size : t;
}

// Keeps a coordinate where its texel is an int: textures that repeat a million times over are noise anyhow.
float bounded(float x) { return std::isfinite(x) ? std::clamp(x, -1e6F, 1e6F) : 0.0F; }

Vec4 lerp(Vec4 a, Vec4 b, float t) {
  return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, a.z + (b.z - a.z) * t, a.w + (b.w - a.w) * t};
}

}  // namespace

ImageStore::ImageStore(const std::vector<scene::Image>& images) : pyramids_(images.size()) {
  for (std::size_t i = 0; i < images.size(); ++i) {
    const scene::Image& image = images[i];
    if (image.width < 1 || image.height < 1 ||
        image.texels.size() < static_cast<std::size_t>(image.width) * image.height * 4) {
      continue;
    }
    Pyramid& pyramid = pyramids_[i];
    pyramid.levels.push_back({image.width, image.height, image.texels.data()});
    while (pyramid.levels.back().width > 1 || pyramid.levels.back().height > 1) {
      const Level& from = pyramid.levels.back();
      const int width = std::max(1, from.width / 2), height = std::max(1, from.height / 2);
      pyramid.reduced.push_back(halve(from, width, height));
      pyramid.levels.push_back({width, height, pyramid.reduced.back().data()});
    }
  }
}

std::span<const ImageStore::Level> ImageStore::levels(int image) const {
  if (image < 0 || static_cast<std::size_t>(image) >= pyramids_.size()) return {};
  return pyramids_[static_cast<std::size_t>(image)].levels;
}

TextureLookup::TextureLookup(const Texture& texture, const ImageStore& images)
    : levels_(images.levels(texture.image)),
      wrapU_(texture.wrapU),
      wrapV_(texture.wrapV),
      nearest_(texture.nearest),
      texCoord_(texture.texCoord),
      offset_(texture.offset) {
  // KHR_texture_transform: rotation counter-clockwise in uv, whose v points down.
  const float c = std::cos(texture.rotation), s = std::sin(texture.rotation);
  uAxis_ = {c * texture.scale.x, -s * texture.scale.x};
  vAxis_ = {s * texture.scale.y, c * texture.scale.y};
  if (!levels_.empty()) {
    const float scale = std::sqrt(std::fabs(texture.scale.x * texture.scale.y));
    footprintScale_ = scale * static_cast<float>(std::max(levels_.front().width, levels_.front().height));
  }
}

Vec4 TextureLookup::sample(Vec2 uv, float footprint) const {
  const Vec2 moved{uAxis_.x * uv.x + vAxis_.x * uv.y + offset_.x, uAxis_.y * uv.x + vAxis_.y * uv.y + offset_.y};
  const float texels = footprint * footprintScale_;
  if (nearest_ || !(texels > 1)) return sampleLevel(levels_.front(), moved);
  const float last = static_cast<float>(levels_.size() - 1);
  const float depth = std::min(std::log2(texels), last);
  const auto finer = static_cast<std::size_t>(depth);
  const std::size_t coarser = std::min(finer + 1, levels_.size() - 1);
  return lerp(sampleLevel(levels_[finer], moved), sampleLevel(levels_[coarser], moved),
              depth - static_cast<float>(finer));
}

Vec4 TextureLookup::sampleLevel(const ImageStore::Level& level, Vec2 uv) const {
  const auto texel = [&](int x, int y) {
    const std::size_t row = static_cast<std::size_t>(wrap(y, level.height, wrapV_));
    const float* t = level.texels + (row * level.width + static_cast<std::size_t>(wrap(x, level.width, wrapU_))) * 4;
    return Vec4{t[0], t[1], t[2], t[3]};
  };
  // Texel centres lie at half numbers.
  const float x = bounded(uv.x * static_cast<float>(level.width)), y = bounded(uv.y * static_cast<float>(level.height));
  if (nearest_) return texel(static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y)));
  const float left = std::floor(x - 0.5F), top = std::floor(y - 0.5F);
  const int x0 = static_cast<int>(left), y0 = static_cast<int>(top);
  const float fx = x - 0.5F - left, fy = y - 0.5F - top;
  return lerp(lerp(texel(x0, y0), texel(x0 + 1, y0), fx), lerp(texel(x0, y0 + 1), texel(x0 + 1, y0 + 1), fx), fy);
}

}  // namespace standin::raytracer
