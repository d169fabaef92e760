#include "standin/raytracer/brdf.h"

#include "standin/raytracer/sampler.h"

namespace standin::raytracer {

namespace {

// A normal of the microfacets that `viewer` (in the surface's own frame) sees.
Vec3 visibleNormal(Vec3 viewer, float alpha, Vec2 u) {
  const Vec3 stretched = normalize({alpha * viewer.x, alpha * viewer.y, viewer.z});
  const float radius = std::sqrt(u.x), angle = 2 * kPi * u.y;
  const float t1 = radius * std::cos(angle);
  const float s = 0.5F * (1 + stretched.z);
  const float flat = std::sqrt(stretched.x * stretched.x + stretched.y * stretched.y);
  const Vec3 across = flat > 1e-6F ? Vec3{-stretched.y / flat, stretched.x / flat, 0} : Vec3{1, 0, 0};
  const Vec3 along = cross(stretched, across);
  const float t2 = (1 - s) * std::sqrt(std::max(0.0F, 1 - t1 * t1)) + s * radius * std::sin(angle);
  const Vec3 n = across * t1 + along * t2 + stretched * std::sqrt(std::max(0.0F, 1 - t1 * t1 - t2 * t2));
  return normalize({alpha * n.x, alpha * n.y, std::max(1e-6F, n.z)});
}

float maskingLambda(float cosine, float alpha) {
  const float c2 = std::max(cosine * cosine, 1e-8F), a2 = alpha * alpha;
  return 0.5F * (std::sqrt(1 + a2 * (1 - c2) / c2) - 1);
}

// Integrals over the half sphere by the viewer's cosine and the roughness. Fresnel's reflectance is linear in that at
// normal incidence, so two numbers serve every colour.
class CoatTable {
 public:
  struct Entry {
    float white;  // of a coat that reflects all light at every angle
    float edge;   // of one that reflects none at normal incidence
  };
  static constexpr int kSize = 24;

  CoatTable() {
    for (int y = 0; y < kSize; ++y) {
      for (int x = 0; x < kSize; ++x) entries_[x][y] = integrate(std::max(0.01F, share(x)), share(y));
    }
  }
  const Entry& at(int x, int y) const { return entries_[x][y]; }

 private:
  static float share(int i) { return static_cast<float>(i) / (kSize - 1); }

  static Entry integrate(float cosV, float roughness) {
    constexpr int kSamples = 128;
    const PixelSampler sampler(0, 0, 0, 0, kSamples);
    const Vec3 viewer{std::sqrt(1 - cosV * cosV), 0, cosV};
    const Reflectance white{{}, {1, 1, 1}, roughness * roughness}, black{{}, {}, roughness * roughness};
    Entry sum{0, 0};
    for (int i = 0; i < kSamples; ++i) {
      const Vec2 u = sampler.point(SampleUse::reflection, i);
      sum.white += sampleCoat(white, {0, 0, 1}, viewer, u).weight.x / kSamples;
      sum.edge += sampleCoat(black, {0, 0, 1}, viewer, u).weight.x / kSamples;
    }
    return sum;
  }

  Entry entries_[kSize][kSize];
};

}  // namespace

Vec3 coatAlbedo(const Reflectance& r, float cosV) {
  static const CoatTable table;
  const float x = saturate(cosV) * (CoatTable::kSize - 1), y = saturate(std::sqrt(r.alpha)) * (CoatTable::kSize - 1);
  const int x0 = std::min(static_cast<int>(x), CoatTable::kSize - 2);
  const int y0 = std::min(static_cast<int>(y), CoatTable::kSize - 2);
  const float fx = x - static_cast<float>(x0), fy = y - static_cast<float>(y0);
  const CoatTable::Entry &a = table.at(x0, y0), &b = table.at(x0 + 1, y0);
  const CoatTable::Entry &c = table.at(x0, y0 + 1), &d = table.at(x0 + 1, y0 + 1);
  const auto blend = [&](float p, float q, float s, float t) {
    return (p + (q - p) * fx) * (1 - fy) + (s + (t - s) * fx) * fy;
  };
  const float white = blend(a.white, b.white, c.white, d.white), edge = blend(a.edge, b.edge, c.edge, d.edge);
  return r.specular * (white - edge) + Vec3{edge, edge, edge};
}

CoatSample sampleCoat(const Reflectance& r, Vec3 normal, Vec3 toViewer, Vec2 u) {
  const float alpha = std::max(r.alpha, 1e-4F);
  const Basis basis(normal);
  const Vec3 viewer = basis.toLocal(toViewer);
  const Vec3 half = visibleNormal(viewer, alpha, u);
  const Vec3 light = reflectAbout(half, viewer);
  if (light.z <= 0) return {normal, {0, 0, 0}};
  const float lambdaV = maskingLambda(viewer.z, alpha), lambdaL = maskingLambda(light.z, alpha);
  const float weight = (1 + lambdaV) / (1 + lambdaV + lambdaL);
  return {basis.toWorld(light), fresnel(r.specular, dot(viewer, half)) * weight};
}

}  // namespace standin::raytracer
