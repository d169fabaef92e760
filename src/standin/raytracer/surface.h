// What a ray's hit means for shading: the place, the normals, the texture coordinates and the material.
#pragma once

#include "standin/raytracer/embree_scene.h"
#include "standin/raytracer/material.h"

namespace standin::raytracer {

// A point of a surface as a ray met it. Normals are of unit length and look to the side the ray came from.
struct SurfacePoint {
  float distance;
  Vec3 position;         // world space
  Vec3 geometricNormal;  // of the triangle
  Vec3 normal;           // smooth, and bent by the normal map
  // Where rays to lights start: on smooth meshes the point is lifted onto the rounded surface that the normals promise,
  // so that the triangles do not show along the shadow's edge (Hanika, "Hacking the Shadow Terminator", 2021).
  Vec3 rayOrigin;
  TexturePoint texture;
  const SurfaceMaterial* material;
  int objectId;
};

class SurfaceReader {
 public:
  SurfaceReader(const scene::Scene& scene, const EmbreeScene& geometry, const MaterialTable& materials)
      : scene_(scene), geometry_(geometry), materials_(materials) {}

  // How much of the light along `ray` stops at the hit. With `culling` the back of a one-sided surface stops none.
  float opacity(const Ray& ray, const Hit& hit, bool culling) const;

  // `footprint` is the width at distance 1 of the cone that the ray stands for.
  SurfacePoint read(const Ray& ray, const Hit& hit, float footprint) const;

 private:
  struct Triangle;
  Triangle triangleOf(const Hit& hit) const;
  static TexturePoint texturePoint(const Triangle& triangle, float worldWidth);
  static Vec3 liftedOrigin(const Triangle& triangle, float side);
  static Vec3 bentNormal(const Triangle& triangle, const TexturePoint& texture, Vec3 normal);

  const scene::Scene& scene_;
  const EmbreeScene& geometry_;
  const MaterialTable& materials_;
};

}  // namespace standin::raytracer
