#include "standin/raytracer/surface.h"

namespace standin::raytracer {

// The triangle of a hit, in the mesh's own space, with the hit's barycentric weights.
struct SurfaceReader::Triangle {
  const Instance* instance;
  const scene::Primitive* primitive;
  const SurfaceMaterial* material;
  std::uint32_t index[3];
  float weight[3];

  template <class T>
  T interpolate(const std::vector<T>& values) const {
    const T &a = values[index[0]], &b = values[index[1]], &c = values[index[2]];
    if constexpr (std::is_same_v<T, Vec2>) {
      return {a.x * weight[0] + b.x * weight[1] + c.x * weight[2], a.y * weight[0] + b.y * weight[1] + c.y * weight[2]};
    } else if constexpr (std::is_same_v<T, Vec3>) {
      return a * weight[0] + b * weight[1] + c * weight[2];
    } else {
      return {a.x * weight[0] + b.x * weight[1] + c.x * weight[2], a.y * weight[0] + b.y * weight[1] + c.y * weight[2],
              a.z * weight[0] + b.z * weight[1] + c.z * weight[2], a.w * weight[0] + b.w * weight[1] + c.w * weight[2]};
    }
  }
  // Two edges of the world-space triangle, from its first vertex.
  Vec3 edge(int to) const {
    const auto& p = primitive->positions;
    return transformVector(instance->toWorld, p[index[to]] - p[index[0]]);
  }
  // Of the length of twice the area; looks to the triangle's front also where the instance is mirrored.
  Vec3 areaNormal() const {
    const Vec3 n = cross(edge(1), edge(2));
    return instance->mirrored ? -n : n;
  }
};

SurfaceReader::Triangle SurfaceReader::triangleOf(const Hit& hit) const {
  const Instance& instance = geometry_.instances()[hit.instance];
  const scene::Primitive& primitive = scene_.meshes[static_cast<std::size_t>(instance.mesh)].primitives[hit.primitive];
  const std::uint32_t* index = primitive.indices.data() + static_cast<std::size_t>(hit.triangle) * 3;
  return {&instance,
          &primitive,
          &materials_[primitive.material],
          {index[0], index[1], index[2]},
          {1 - hit.u - hit.v, hit.u, hit.v}};
}

TexturePoint SurfaceReader::texturePoint(const Triangle& triangle, float worldWidth) {
  TexturePoint point;
  const scene::Primitive& primitive = *triangle.primitive;
  const std::vector<Vec2>* const sets[2] = {&primitive.uv0, &primitive.uv1};
  for (std::size_t i = 0; i < 2; ++i) {
    const std::vector<Vec2>& uv = *sets[i];
    if (uv.empty()) continue;
    point.present[i] = true;
    point.uv[i] = triangle.interpolate(uv);
    if (!(worldWidth > 0)) continue;
    const Vec2 a = uv[triangle.index[0]], b = uv[triangle.index[1]], c = uv[triangle.index[2]];
    const float uvArea = std::fabs((b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y));
    const float worldArea = length(triangle.areaNormal());
    if (worldArea > 0) point.footprint[i] = worldWidth * std::sqrt(uvArea / worldArea);
  }
  if (!primitive.colors.empty()) point.vertexColor = triangle.interpolate(primitive.colors);
  return point;
}

float SurfaceReader::opacity(const Ray& ray, const Hit& hit, bool culling) const {
  const Triangle triangle = triangleOf(hit);
  if (culling && !triangle.material->doubleSided() && dot(triangle.areaNormal(), ray.direction) > 0) return 0;
  if (triangle.material->opaque()) return 1;
  return triangle.material->opacity(texturePoint(triangle, 0));
}

Vec3 SurfaceReader::liftedOrigin(const Triangle& triangle, float side) {
  const scene::Primitive& primitive = *triangle.primitive;
  const Vec3 position = triangle.interpolate(primitive.positions);
  if (primitive.normals.empty()) return transformPoint(triangle.instance->toWorld, position);
  Vec3 lifted = position;
  for (std::size_t i = 0; i < 3; ++i) {
    const Vec3 normal = primitive.normals[triangle.index[i]] * side;
    const float below = std::min(0.0F, dot(position - primitive.positions[triangle.index[i]], normal));
    lifted += normal * (-below * triangle.weight[i]);
  }
  return transformPoint(triangle.instance->toWorld, lifted);
}

Vec3 SurfaceReader::bentNormal(const Triangle& triangle, const TexturePoint& texture, Vec3 normal) {
  const scene::Primitive& primitive = *triangle.primitive;
  Vec3 tangent;
  float handedness = 1;
  if (!primitive.tangents.empty()) {
    const Vec4 t = triangle.interpolate(primitive.tangents);
    tangent = transformVector(triangle.instance->toWorld, {t.x, t.y, t.z});
    handedness = t.w < 0 ? -1.0F : 1.0F;
  } else {
    const std::vector<Vec2>& uv = triangle.material->normalTexCoord() == 1 ? primitive.uv1 : primitive.uv0;
    if (uv.empty()) return normal;
    const Vec2 a = uv[triangle.index[0]], b = uv[triangle.index[1]], c = uv[triangle.index[2]];
    const float du1 = b.x - a.x, dv1 = b.y - a.y, du2 = c.x - a.x, dv2 = c.y - a.y;
    const float turn = du1 * dv2 - du2 * dv1;
    if (turn == 0) return normal;
    tangent = (triangle.edge(1) * dv2 - triangle.edge(2) * dv1) * (turn < 0 ? -1.0F : 1.0F);
    // v points down in images: texture space is right-handed where uv runs against the triangle's winding.
    handedness = turn < 0 ? 1.0F : -1.0F;
  }
  if (triangle.instance->mirrored) handedness = -handedness;
  tangent = normalize(tangent - normal * dot(normal, tangent));
  if (!(dot(tangent, tangent) > 0)) return normal;
  const Vec3 bitangent = cross(normal, tangent) * handedness;
  const Vec3 t = triangle.material->tangentNormal(texture);
  const Vec3 bent = normalize(tangent * t.x + bitangent * t.y + normal * t.z);
  return dot(bent, bent) > 0 ? bent : normal;
}

SurfacePoint SurfaceReader::read(const Ray& ray, const Hit& hit, float footprint) const {
  const Triangle triangle = triangleOf(hit);
  const Transform& toWorld = triangle.instance->toWorld;
  SurfacePoint point;
  point.distance = hit.distance;
  point.material = triangle.material;
  point.objectId = triangle.instance->objectId;
  point.position = transformPoint(toWorld, triangle.interpolate(triangle.primitive->positions));

  const Vec3 front = normalize(triangle.areaNormal());
  const float side = dot(front, ray.direction) > 0 ? -1.0F : 1.0F;  // which side of the triangle the ray met
  point.geometricNormal = front * side;
  const float cosine = std::max(0.1F, -dot(point.geometricNormal, ray.direction));
  point.texture = texturePoint(triangle, footprint * hit.distance / std::sqrt(cosine));

  Vec3 normal = front;
  if (!triangle.primitive->normals.empty()) {
    const Vec3 smooth = transformNormal(toWorld, triangle.interpolate(triangle.primitive->normals));
    if (dot(smooth, smooth) > 0.5F) normal = smooth;
  }
  if (triangle.material->hasNormalMap()) normal = bentNormal(triangle, point.texture, normal);
  normal = normal * side;
  // A normal that looks away from the viewer is turned until it is just in view.
  const float facing = -dot(normal, ray.direction);
  if (facing < 1e-3F) normal = normalize(normal - ray.direction * (2e-3F - facing));
  point.normal = isFinite(normal) ? normal : point.geometricNormal;

  // Far enough off the surface that rounding cannot put it behind: a few units in the last place of what went into it.
  const Vec3 p = point.position;
  const float magnitude =
      std::max(std::fabs(p.x), std::max(std::fabs(p.y), std::fabs(p.z))) + hit.distance +
      std::max(std::fabs(toWorld.m[3]), std::max(std::fabs(toWorld.m[7]), std::fabs(toWorld.m[11])));
  point.rayOrigin = liftedOrigin(triangle, side) + point.geometricNormal * (magnitude * 5e-6F);
  return point;
}

}  // namespace standin::raytracer
