#include "standin/scene/math.h"

namespace standin::scene {

namespace {

// The upper 3 x 3 part's column `c`.
Vec3 column(const Transform& t, std::size_t c) { return {t.m[c], t.m[4 + c], t.m[8 + c]}; }
Vec3 row(const Transform& t, std::size_t r) { return {t.m[4 * r], t.m[4 * r + 1], t.m[4 * r + 2]}; }

}  // namespace

Vec3 transformPoint(const Transform& t, Vec3 p) {
  return {dot(row(t, 0), p) + t.m[3], dot(row(t, 1), p) + t.m[7], dot(row(t, 2), p) + t.m[11]};
}

Vec3 transformVector(const Transform& t, Vec3 v) { return {dot(row(t, 0), v), dot(row(t, 1), v), dot(row(t, 2), v)}; }

Vec3 transformNormal(const Transform& t, Vec3 n) {
  // The inverse transpose is the matrix of cofactors over the determinant; only the determinant's sign matters here,
  // and with it the normal stays on its own side of the surface under a mirroring.
  const Vec3 a = column(t, 0), b = column(t, 1), c = column(t, 2);
  const Vec3 bc = cross(b, c), ca = cross(c, a), ab = cross(a, b);
  const float sign = dot(a, bc) < 0 ? -1.0F : 1.0F;
  return normalize((bc * n.x + ca * n.y + ab * n.z) * sign);
}

Transform compose(const Transform& a, const Transform& b) {
  Transform out;
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t c = 0; c < 4; ++c) out.m[4 * r + c] = dot(row(a, r), column(b, c));
    out.m[4 * r + 3] += a.m[4 * r + 3];
  }
  return out;
}

Transform inverse(const Transform& t) {
  const Vec3 a = column(t, 0), b = column(t, 1), c = column(t, 2), origin = column(t, 3);
  const float determinant = dot(a, cross(b, c));
  if (determinant == 0.0F || !std::isfinite(1.0F / determinant)) return {};
  const float scale = 1.0F / determinant;
  const Vec3 rows[3] = {cross(b, c) * scale, cross(c, a) * scale, cross(a, b) * scale};
  Transform out;
  for (std::size_t r = 0; r < 3; ++r) {
    out.m[4 * r] = rows[r].x;
    out.m[4 * r + 1] = rows[r].y;
    out.m[4 * r + 2] = rows[r].z;
    out.m[4 * r + 3] = -dot(rows[r], origin);
  }
  return out;
}

Transform fromTranslationRotationScale(Vec3 translation, Quat q, Vec3 scale) {
  const float xx = q.x * q.x, yy = q.y * q.y, zz = q.z * q.z;
  const float xy = q.x * q.y, xz = q.x * q.z, yz = q.y * q.z;
  const float wx = q.w * q.x, wy = q.w * q.y, wz = q.w * q.z;
  return {{(1 - 2 * (yy + zz)) * scale.x, 2 * (xy - wz) * scale.y, 2 * (xz + wy) * scale.z, translation.x,
           2 * (xy + wz) * scale.x, (1 - 2 * (xx + zz)) * scale.y, 2 * (yz - wx) * scale.z, translation.y,
           2 * (xz - wy) * scale.x, 2 * (yz + wx) * scale.y, (1 - 2 * (xx + yy)) * scale.z, translation.z}};
}

Transform lookAt(Vec3 eye, Vec3 target, Vec3 up) {
  Vec3 back = normalize(eye - target);
  if (length(back) == 0) back = {0, 0, 1};
  Vec3 right = cross(up, back);
  // Looking along `up`: any direction across it will do.
  if (length(right) < 1e-6F) right = cross(std::fabs(back.x) < 0.9F ? Vec3{1, 0, 0} : Vec3{0, 0, 1}, back);
  right = normalize(right);
  const Vec3 trueUp = cross(back, right);
  return {{right.x, trueUp.x, back.x, eye.x, right.y, trueUp.y, back.y, eye.y, right.z, trueUp.z, back.z, eye.z}};
}

Quat slerp(Quat a, Quat b, float t) {
  float cosine = a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
  // Both signs are the same rotation; take the shorter way.
  const float sign = cosine < 0 ? -1.0F : 1.0F;
  cosine *= sign;
  float first = 1 - t, second = t;
  if (cosine < 0.9995F) {  // closer together the sine underflows and a straight line is exact enough
    const float angle = std::acos(cosine), sine = std::sin(angle);
    first = std::sin((1 - t) * angle) / sine;
    second = std::sin(t * angle) / sine;
  }
  second *= sign;
  const Quat q{a.x * first + b.x * second, a.y * first + b.y * second, a.z * first + b.z * second,
               a.w * first + b.w * second};
  const float l = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
  return l > 0 ? Quat{q.x / l, q.y / l, q.z / l, q.w / l} : Quat{};
}

}  // namespace standin::scene
