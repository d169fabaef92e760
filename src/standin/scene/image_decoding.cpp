#include "standin/scene/image_decoding.h"

#include <array>
#include <climits>
#include <cmath>
#include <memory>

// The decoder's functions stay in this unit, apart from any other copy of them in the process.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_NO_STDIO
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

namespace standin::scene {

namespace {

constexpr int kChannels = 4;
constexpr std::size_t kMostTexels = std::size_t{1} << 28;  // 16384 x 16384

template <class Sample>
using Samples = std::unique_ptr<Sample, decltype(&stbi_image_free)>;

float linearFromSrgb(float value) {
  return value <= 0.04045F ? value / 12.92F : std::pow((value + 0.055F) / 1.055F, 2.4F);
}

// What each stored value stands for.
template <class Sample>
std::vector<float> transferTable(Transfer transfer) {
  const auto highest = static_cast<float>(static_cast<Sample>(~Sample{0}));
  std::vector<float> table(static_cast<std::size_t>(highest) + 1);
  for (std::size_t i = 0; i < table.size(); ++i) {
    const float value = static_cast<float>(i) / highest;
    table[i] = transfer == Transfer::srgb ? linearFromSrgb(value) : value;
  }
  return table;
}

template <class Sample>
void convert(const Sample* samples, Transfer transfer, std::vector<float>& texels) {
  const std::vector<float> colour = transferTable<Sample>(transfer), alpha = transferTable<Sample>(Transfer::linear);
  for (std::size_t i = 0; i < texels.size(); i += kChannels) {
    for (std::size_t c = 0; c < kChannels - 1; ++c) texels[i + c] = colour[samples[i + c]];
    texels[i + 3] = alpha[samples[i + 3]];
  }
}

}  // namespace

std::string decodeImage(const std::vector<unsigned char>& bytes, Transfer transfer, Image& image) {
  if (bytes.size() > INT_MAX) return "it is larger than 2 GB";
  const stbi_uc* data = bytes.data();
  const int size = static_cast<int>(bytes.size());
  int width = 0, height = 0, channels = 0;
  if (stbi_info_from_memory(data, size, &width, &height, &channels) == 0) return stbi_failure_reason();
  const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  if (count == 0 || count > kMostTexels) return "its size is " + std::to_string(width) + " x " + std::to_string(height);
  std::vector<float> texels(count * kChannels);

  if (stbi_is_hdr_from_memory(data, size) != 0) {
    const Samples<float> samples(stbi_loadf_from_memory(data, size, &width, &height, &channels, kChannels),
                                 &stbi_image_free);
    if (!samples) return stbi_failure_reason();
    texels.assign(samples.get(), samples.get() + texels.size());
  } else if (stbi_is_16_bit_from_memory(data, size) != 0) {
    const Samples<stbi_us> samples(stbi_load_16_from_memory(data, size, &width, &height, &channels, kChannels),
                                   &stbi_image_free);
    if (!samples) return stbi_failure_reason();
    convert(samples.get(), transfer, texels);
  } else {
    const Samples<stbi_uc> samples(stbi_load_from_memory(data, size, &width, &height, &channels, kChannels),
                                   &stbi_image_free);
    if (!samples) return stbi_failure_reason();
    convert(samples.get(), transfer, texels);
  }
  image.width = width;
  image.height = height;
  image.texels = std::move(texels);
  return {};
}

}  // namespace standin::scene
