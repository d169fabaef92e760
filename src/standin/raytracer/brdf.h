// The metallic-roughness surface model of glTF 2.0 (its appendix B): a matt base below a GGX microfacet coat.
#pragma once

#include "standin/raytracer/vector.h"

namespace standin::raytracer {

// What light does on a surface point.
struct Reflectance {
  Vec3 diffuse;   // base colour of the matt part: none on metals
  Vec3 specular;  // reflectance at normal incidence
  float alpha;    // roughness squared

  static Reflectance of(Vec3 baseColor, float metallic, float roughness) {
    const float perceptual = saturate(roughness), metal = saturate(metallic);
    return {baseColor * (1 - metal), mix({0.04F, 0.04F, 0.04F}, baseColor, metal), perceptual * perceptual};
  }
};

// Below this width a highlight of a point-like light would be a few stray bright samples; lights are not points.
inline constexpr float kNarrowestHighlight = 0.02F;

inline Vec3 fresnel(Vec3 atNormal, float cosine) {
  const float m = saturate(1 - cosine), m2 = m * m;
  return atNormal + (Vec3{1, 1, 1} - atNormal) * (m2 * m2 * m);
}

// Smith's height-correlated masking and shadowing, divided by 4 cosL cosV.
inline float visibility(float cosL, float cosV, float alpha) {
  const float a2 = alpha * alpha;
  const float v = cosL * std::sqrt(cosV * cosV * (1 - a2) + a2);
  const float l = cosV * std::sqrt(cosL * cosL * (1 - a2) + a2);
  return 0.5F / std::max(v + l, 1e-7F);
}

inline float distribution(float cosH, float alpha) {
  const float a2 = alpha * alpha, d = cosH * cosH * (a2 - 1) + 1;
  return a2 / std::max(kPi * d * d, 1e-12F);
}

// Reflected share of light from `toLight`, times the cosine at the surface. All directions are of unit length and leave
// the surface; `cosL` and `cosV` are their cosines with the normal, both above 0.
inline Vec3 reflectedLight(const Reflectance& r, Vec3 normal, Vec3 toLight, Vec3 toViewer, float cosL, float cosV) {
  const Vec3 half = normalize(toLight + toViewer);
  const float alpha = std::max(r.alpha, kNarrowestHighlight);
  const Vec3 f = fresnel(r.specular, dot(toViewer, half));
  const Vec3 specular = f * (distribution(saturate(dot(normal, half)), alpha) * visibility(cosL, cosV, alpha));
  return ((Vec3{1, 1, 1} - f) * r.diffuse * (1 / kPi) + specular) * cosL;
}

// Share of light from all around that the coat sends to a viewer at cosine `cosV` with the normal.
Vec3 coatAlbedo(const Reflectance& r, float cosV);

// A direction that the coat mirrors `toViewer` into, and the weight of what comes from there; `u` is uniform in the
// unit square. Weight 0 where the direction leaves the half sphere. Heitz, "Sampling the GGX Distribution of Visible
// Normals" (2018).
struct CoatSample {
  Vec3 direction, weight;
};
CoatSample sampleCoat(const Reflectance& r, Vec3 normal, Vec3 toViewer, Vec2 u);

}  // namespace standin::raytracer
