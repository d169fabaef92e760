// Vector helpers of the shading code, inline because they run per ray.
#pragma once

#include <algorithm>
#include <cmath>

#include "standin/scene/math.h"

namespace standin::raytracer {

using scene::cross;
using scene::dot;
using scene::length;
using scene::normalize;
using scene::Transform;
using scene::Vec2;
using scene::Vec3;
using scene::Vec4;

inline constexpr float kPi = 3.14159265358979F;

inline Vec3& operator+=(Vec3& a, Vec3 b) {
  a = a + b;
  return a;
}
inline float saturate(float x) { return std::clamp(x, 0.0F, 1.0F); }
inline Vec3 mix(Vec3 a, Vec3 b, float t) { return a * (1 - t) + b * t; }
inline float largest(Vec3 a) { return std::max(a.x, std::max(a.y, a.z)); }
inline bool isFinite(Vec3 a) { return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z); }
// `direction` points away from the surface, and so does the result.
inline Vec3 reflectAbout(Vec3 normal, Vec3 direction) { return normal * (2 * dot(normal, direction)) - direction; }

// Two unit vectors across a unit vector; right-handed. After Duff et al., "Building an Orthonormal Basis, Revisited".
struct Basis {
  Vec3 x, y, z;
  explicit Basis(Vec3 normal) : z(normal) {
    const float sign = std::copysign(1.0F, normal.z);
    const float a = -1 / (sign + normal.z);
    const float b = normal.x * normal.y * a;
    x = {1 + sign * normal.x * normal.x * a, sign * b, -sign * normal.x};
    y = {b, sign + normal.y * normal.y * a, -normal.y};
  }
  Vec3 toWorld(Vec3 v) const { return x * v.x + y * v.y + z * v.z; }
  Vec3 toLocal(Vec3 v) const { return {dot(x, v), dot(y, v), dot(z, v)}; }
};

}  // namespace standin::raytracer
