#include "standin/scene/mesh_completion.h"

#include <cstddef>

namespace standin::scene {

namespace {

constexpr float kNoLength = 1e-12F;

// Of twice the triangle's area in length.
Vec3 areaNormal(const Primitive& p, std::size_t firstIndex) {
  const Vec3 a = p.positions[p.indices[firstIndex]];
  return cross(p.positions[p.indices[firstIndex + 1]] - a, p.positions[p.indices[firstIndex + 2]] - a);
}

// Unit length, safe for very small and very large triangles; +y when there is no direction.
Vec3 direction(Vec3 v) {
  const float largest = std::fmax(std::fabs(v.x), std::fmax(std::fabs(v.y), std::fabs(v.z)));
  if (!(largest > 0) || !std::isfinite(largest)) return {0, 1, 0};
  return normalize({v.x / largest, v.y / largest, v.z / largest});
}

template <class Element>
void spread(std::vector<Element>& array, const std::vector<std::uint32_t>& indices) {
  if (array.empty()) return;
  std::vector<Element> out(indices.size());
  for (std::size_t i = 0; i < indices.size(); ++i) out[i] = array[indices[i]];
  array.swap(out);
}

// Any unit vector at right angles to a unit vector.
Vec3 across(Vec3 n) { return direction(cross(n, std::fabs(n.x) < 0.7F ? Vec3{1, 0, 0} : Vec3{0, 1, 0})); }

}  // namespace

void addFlatNormals(Primitive& p) {
  spread(p.positions, p.indices);
  spread(p.uv0, p.indices);
  spread(p.uv1, p.indices);
  spread(p.colors, p.indices);
  p.tangents.clear();  // they mean nothing without the normals they belong to
  for (std::size_t i = 0; i < p.indices.size(); ++i) p.indices[i] = static_cast<std::uint32_t>(i);
  p.normals.resize(p.positions.size());
  for (std::size_t i = 0; i + 2 < p.indices.size(); i += 3)
    p.normals[i] = p.normals[i + 1] = p.normals[i + 2] = direction(areaNormal(p, i));
}

void repairNormals(Primitive& p) {
  bool whole = true;
  for (Vec3& n : p.normals) {
    const float squared = dot(n, n);
    if (squared > kNoLength && std::isfinite(squared))
      n = n * (1.0F / std::sqrt(squared));
    else
      whole = false;
  }
  if (whole) return;
  std::vector<Vec3> gathered(p.positions.size());
  for (std::size_t i = 0; i < p.indices.size(); i += 3) {
    const Vec3 normal = areaNormal(p, i);
    for (std::size_t corner = 0; corner < 3; ++corner) {
      Vec3& sum = gathered[p.indices[i + corner]];
      sum = sum + normal;
    }
  }
  for (std::size_t v = 0; v < p.normals.size(); ++v) {
    const float squared = dot(p.normals[v], p.normals[v]);
    if (!(squared > kNoLength) || !std::isfinite(squared)) p.normals[v] = direction(gathered[v]);
  }
}

void addTangents(Primitive& p, const std::vector<Vec2>& uv) {
  // Per vertex the directions of rising u and v, from every triangle around it, weighted by area.
  std::vector<Vec3> alongU(p.positions.size()), alongV(p.positions.size());
  for (std::size_t i = 0; i < p.indices.size(); i += 3) {
    const std::uint32_t a = p.indices[i], b = p.indices[i + 1], c = p.indices[i + 2];
    const Vec3 edge1 = p.positions[b] - p.positions[a], edge2 = p.positions[c] - p.positions[a];
    const float du1 = uv[b].x - uv[a].x, dv1 = uv[b].y - uv[a].y, du2 = uv[c].x - uv[a].x, dv2 = uv[c].y - uv[a].y;
    // Dividing by the signed area in uv and weighting by the area in space: only the sign of the first matters.
    const float sign = du1 * dv2 - du2 * dv1 < 0 ? -1.0F : 1.0F;
    const Vec3 u = (edge1 * dv2 - edge2 * dv1) * sign, v = (edge2 * du1 - edge1 * du2) * sign;
    for (const std::uint32_t corner : {a, b, c}) {
      alongU[corner] = alongU[corner] + u;
      alongV[corner] = alongV[corner] + v;
    }
  }
  p.tangents.resize(p.positions.size());
  for (std::size_t i = 0; i < p.tangents.size(); ++i) {
    const Vec3 n = p.normals[i];
    const Vec3 flat = alongU[i] - n * dot(n, alongU[i]);
    const float squared = dot(flat, flat);
    const Vec3 t = squared > 0 && std::isfinite(squared) ? direction(flat) : across(n);
    // In normal maps y points up the image while v runs down it, so the bitangent, cross(n, t) * w, opposes rising v.
    const float w = dot(cross(n, t), alongV[i]) > 0 ? -1.0F : 1.0F;
    p.tangents[i] = {t.x, t.y, t.z, w};
  }
}

}  // namespace standin::scene
