// Small vectors and matrices for scene data. Column vectors; a transform maps p to M * (p, 1).
#pragma once

#include <array>
#include <cmath>

namespace standin::scene {

struct Vec2 {
  float x = 0, y = 0;
};
struct Vec3 {
  float x = 0, y = 0, z = 0;
};
struct Vec4 {
  float x = 0, y = 0, z = 0, w = 0;
};
struct Quat {  // unit quaternion; w is the real part
  float x = 0, y = 0, z = 0, w = 1;
};

inline Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec3 operator-(Vec3 a) { return {-a.x, -a.y, -a.z}; }
inline Vec3 operator*(Vec3 a, float s) { return {a.x * s, a.y * s, a.z * s}; }
inline Vec3 operator*(float s, Vec3 a) { return a * s; }
inline Vec3 operator*(Vec3 a, Vec3 b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }
inline float dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vec3 cross(Vec3 a, Vec3 b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
inline float length(Vec3 a) { return std::sqrt(dot(a, a)); }
// A zero vector stays zero.
inline Vec3 normalize(Vec3 a) {
  const float l = length(a);
  return l > 0 ? a * (1.0F / l) : a;
}

// Affine transform, row-major 3 x 4: the last column is the translation.
struct Transform {
  std::array<float, 12> m{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};
  bool operator==(const Transform&) const = default;
};

Vec3 transformPoint(const Transform& t, Vec3 p);
Vec3 transformVector(const Transform& t, Vec3 v);
// Transforms a normal by the inverse transpose; the result is of unit length.
Vec3 transformNormal(const Transform& t, Vec3 n);
// a after b: maps p to a(b(p)).
Transform compose(const Transform& a, const Transform& b);
// A singular transform gives the identity.
Transform inverse(const Transform& t);
Transform fromTranslationRotationScale(Vec3 translation, Quat rotation, Vec3 scale);
// Camera at `eye` looking at `target`, y up: camera to world, looking down -z.
Transform lookAt(Vec3 eye, Vec3 target, Vec3 up = {0, 1, 0});
Quat slerp(Quat a, Quat b, float t);

}  // namespace standin::scene
