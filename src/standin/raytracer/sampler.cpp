#include "standin/raytracer/sampler.h"

#include <array>
#include <bit>

namespace standin::raytracer {

namespace {

std::uint32_t mixBits(std::uint32_t x) {
  x ^= x >> 16;
  x *= 0x7FEB352DU;
  x ^= x >> 15;
  x *= 0x846CA68BU;
  return x ^ (x >> 16);
}

std::uint32_t combine(std::uint32_t seed, std::uint32_t value) {
  return mixBits(seed ^ (value + 0x9E3779B9U + (seed << 6) + (seed >> 2)));
}

std::uint32_t reverseBits(std::uint32_t x) {
  x = __builtin_bswap32(x);
  x = ((x >> 4) & 0x0F0F0F0FU) | ((x & 0x0F0F0F0FU) << 4);
  x = ((x >> 2) & 0x33333333U) | ((x & 0x33333333U) << 2);
  return ((x >> 1) & 0x55555555U) | ((x & 0x55555555U) << 1);
}

// Flips every bit by a hash of the lower ones: Owen's scrambling of a number whose bits are reversed.
std::uint32_t scrambleReversed(std::uint32_t x, std::uint32_t seed) {
  x ^= x * 0x3D20ADEAU;
  x += seed;
  x *= (seed >> 16) | 1U;
  x ^= x * 0x05526C56U;
  x ^= x * 0x53A22864U;
  return x;
}

std::uint32_t scramble(std::uint32_t x, std::uint32_t seed) {
  return reverseBits(scrambleReversed(reverseBits(x), seed));
}

// The second dimension of the Sobol sequence, a byte of the index at a time. Direction numbers: v(k) = v(k-1) ^ (v(k-1)
// >> 1).
using ByteTables = std::array<std::array<std::uint32_t, 256>, 4>;
constexpr ByteTables makeSecondDimension() {
  ByteTables tables{};
  std::uint32_t direction = 0x80000000U;
  for (std::size_t byte = 0; byte < 4; ++byte) {
    for (std::size_t bit = 0; bit < 8; ++bit) {
      for (std::size_t value = 0; value < 256; ++value) {
        if ((value >> bit) & 1U) tables[byte][value] ^= direction;
      }
      direction ^= direction >> 1;
    }
  }
  return tables;
}
constexpr ByteTables kSecondDimension = makeSecondDimension();

std::uint32_t secondDimension(std::uint32_t index) {
  return kSecondDimension[0][index & 255U] ^ kSecondDimension[1][(index >> 8) & 255U] ^
         kSecondDimension[2][(index >> 16) & 255U] ^ kSecondDimension[3][index >> 24];
}

// The lower 16 bits, each followed by a zero.
std::uint32_t spread(std::uint32_t x) {
  x &= 0xFFFFU;
  x = (x | (x << 8)) & 0x00FF00FFU;
  x = (x | (x << 4)) & 0x0F0F0F0FU;
  x = (x | (x << 2)) & 0x33333333U;
  return (x | (x << 1)) & 0x55555555U;
}

float toUnit(std::uint32_t x) { return static_cast<float>(x >> 8) * 0x1p-24F; }

std::uint32_t logOf(int count) { return static_cast<std::uint32_t>(std::bit_width(static_cast<unsigned>(count) - 1U)); }

}  // namespace

PixelSampler::PixelSampler(int x, int y, std::uint32_t frame, std::uint32_t pass, int samplesPerPixel)
    : zIndex_(spread(static_cast<std::uint32_t>(x)) | (spread(static_cast<std::uint32_t>(y)) << 1)),
      seed_(combine(combine(0x5EEDU, frame), pass)),
      logSamples_(logOf(samplesPerPixel)) {}

Vec2 PixelSampler::point(SampleUse use, int sample, int index, int perSample) const {
  const std::uint32_t logPoints = logOf(perSample);
  const std::uint32_t within = (static_cast<std::uint32_t>(sample) << logPoints) | static_cast<std::uint32_t>(index);
  // A pixel's points are an aligned stretch of the sequence. In very large images with many samples the walk repeats
  // itself, thousands of pixels apart.
  const std::uint32_t position = (zIndex_ << (logSamples_ + logPoints)) | within;
  const std::uint32_t seed = combine(seed_, static_cast<std::uint32_t>(use));
  const std::uint32_t shuffled = scramble(position, seed);
  // The first dimension of the sequence is the index with its bits reversed.
  const std::uint32_t first = reverseBits(scrambleReversed(shuffled, combine(seed, 1)));
  const std::uint32_t second = scramble(secondDimension(shuffled), combine(seed, 2));
  return {toUnit(first), toUnit(second)};
}

}  // namespace standin::raytracer
