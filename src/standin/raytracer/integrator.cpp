#include "standin/raytracer/integrator.h"

#include <limits>

namespace standin::raytracer {

namespace {

constexpr int kMostLayers = 64;            // surfaces one behind the other that a ray looks through
constexpr float kLeastLight = 1.0F / 512;  // less than this behind translucent surfaces counts as none
constexpr float kInfinity = std::numeric_limits<float>::infinity();
// Up to the first roughness reflections are traced; above the second the sky alone is reflected.
constexpr float kTracedRoughness = 0.3F, kSkyOnlyRoughness = 0.45F;
constexpr float kLeastReflection = 0.02F;   // coat reflectance below which tracing is not worth it
constexpr float kBrightestReflection = 16;  // one stray bright sample must not stand out from its neighbours

// Past a hit, where the same triangle is not met again.
float justBehind(float distance) { return distance * (1 + 1e-6F) + 1e-30F; }

}  // namespace

bool Integrator::nextSurface(Ray& ray, float footprint, SurfacePoint& point, float& opacity) {
  Hit hit;
  for (int layer = 0; layer < kMostLayers && world_.geometry.closest(ray, hit); ++layer) {
    opacity = world_.surfaces.opacity(ray, hit, true);
    ray.nearest = justBehind(hit.distance);
    if (opacity > 0) {
      point = world_.surfaces.read(ray, hit, footprint);
      return true;
    }
  }
  return false;
}

SampleResult Integrator::trace(const PixelSampler& sampler, int index, float x, float y) {
  SampleResult result;
  const CameraRay start = world_.camera.ray(x, y);
  if (!isFinite(start.direction) || !isFinite(start.origin)) return result;
  // More samples see finer texture.
  const float footprint = world_.camera.pixelWidth() / std::sqrt(static_cast<float>(world_.samples));
  Ray ray{start.origin, start.direction, 0, kInfinity};
  float passing = 1;  // light that reaches the camera from behind the surfaces so far
  SurfacePoint point;
  float opacity = 1;
  ++rays_.camera;
  for (int layer = 0; layer < kMostLayers && nextSurface(ray, footprint, point, opacity); ++layer) {
    const Vec3 toViewer = -ray.direction;
    const MaterialPoint material = point.material->evaluate(point.texture);
    if (layer == 0) {
      result.normal = point.normal;
      result.position = point.position;
      result.depth = world_.camera.depth(point.position);
      result.objectId = point.objectId;
    }
    const float weight = passing * opacity;
    result.albedo += material.baseColor * weight;
    if (point.material->unlit()) {
      result.beauty += material.baseColor * weight;
    } else {
      const Shading shading = shade(point, material, toViewer, &sampler, index);
      result.beauty += shading.sum() * weight;
      result.directLight += shading.direct * weight;
      result.emission += shading.emission * weight;
    }
    passing *= 1 - opacity;
    if (passing < kLeastLight) {
      passing = 0;
      break;
    }
    ++rays_.camera;
  }
  result.coverage = 1 - passing;
  return result;
}

// Without a sampler: the plain shading of what is seen in a reflection, which asks no further rays than those to
// lights.
Integrator::Shading Integrator::shade(const SurfacePoint& point, const MaterialPoint& material, Vec3 toViewer,
                                      const PixelSampler* sampler, int index) {
  const Reflectance reflectance = Reflectance::of(material.baseColor, material.metallic, material.roughness);
  Shading shading;
  shading.emission = material.emission;
  shading.direct = directLight(point, reflectance, toViewer);

  const float cosine = saturate(dot(point.normal, toViewer));
  const Vec3 coat = coatAlbedo(reflectance, cosine);
  const float openness = sampler ? skyOpenness(point, *sampler, index) : 1.0F;
  shading.sky = reflectance.diffuse * (Vec3{1, 1, 1} - coat) * world_.sky.diffuse(point.normal) * openness;

  const Vec3 mirrored = reflectAbout(point.normal, toViewer);
  const Vec3 skyReflection = coat * world_.sky.glossy(mirrored, reflectance.alpha) * openness;
  const float roughness = saturate(material.roughness);
  float traced = saturate((kSkyOnlyRoughness - roughness) / (kSkyOnlyRoughness - kTracedRoughness));
  if (!sampler || largest(coat) < kLeastReflection) traced = 0;
  shading.reflected = skyReflection * (1 - traced);
  if (traced > 0) shading.reflected += reflection(point, reflectance, toViewer, *sampler, index) * traced;
  return shading;
}

Vec3 Integrator::directLight(const SurfacePoint& point, const Reflectance& reflectance, Vec3 toViewer) {
  Vec3 sum;
  const float cosV = std::max(dot(point.normal, toViewer), 1e-4F);
  for (const PlacedLight& light : world_.lights) {
    const auto illumination = light.at(point.position);
    if (!illumination) continue;
    const float cosL = dot(point.normal, illumination->toLight);
    if (!(cosL > 0)) continue;
    const Vec3 reflected = reflectedLight(reflectance, point.normal, illumination->toLight, toViewer, cosL, cosV) *
                           illumination->irradiance;
    if (!(largest(reflected) > 0)) continue;
    const float arriving = lightThrough(point.rayOrigin, illumination->toLight, illumination->distance);
    if (arriving > 0) sum += reflected * arriving;
  }
  return sum;
}

float Integrator::lightThrough(Vec3 origin, Vec3 direction, float distance) {
  ++rays_.shadow;
  Ray ray{origin, direction, 0, distance};
  const Occlusion occlusion = world_.geometry.occlusion(ray);
  if (occlusion != Occlusion::filtered) return occlusion == Occlusion::clear ? 1.0F : 0.0F;
  // Only translucent surfaces stand in the way: from one to the next, in the order of the ray.
  float passing = 1;
  Hit hit;
  for (int layer = 0; layer < kMostLayers && world_.geometry.closest(ray, hit); ++layer) {
    ++rays_.shadow;
    passing *= 1 - world_.surfaces.opacity(ray, hit, false);
    if (passing < kLeastLight) return 0;
    ray.nearest = justBehind(hit.distance);
  }
  return passing;
}

// The share of the sky that near surfaces leave open: a few short rays a pixel, spread over its samples.
float Integrator::skyOpenness(const SurfacePoint& point, const PixelSampler& sampler, int index) {
  if (!(world_.skyReach > 0)) return 1;
  constexpr int kRaysPerPixel = 8;
  const int rays = std::clamp(kRaysPerPixel / world_.samples, 1, 4);
  const Basis basis(point.normal);
  float open = 0;
  for (int i = 0; i < rays; ++i) {
    const Vec2 u = sampler.point(SampleUse::sky, index, i, rays);
    const float radius = std::sqrt(u.x), angle = 2 * kPi * u.y;
    const Vec3 direction =
        basis.toWorld({radius * std::cos(angle), radius * std::sin(angle), std::sqrt(std::max(0.0F, 1 - u.x))});
    // Below the triangle though above the smooth normal's horizon: no telling, so open.
    if (dot(direction, point.geometricNormal) <= 0) {
      open += 1;
      continue;
    }
    // The reach differs from ray to ray, so that the shade of a surface fades with distance.
    const int order = (index * rays + i) % kRaysPerPixel;
    const float reach = world_.skyReach * (static_cast<float>(order) + 0.5F) / kRaysPerPixel;
    ++rays_.sky;
    if (world_.geometry.occlusion({point.rayOrigin, direction, 0, reach}) != Occlusion::blocked) open += 1;
  }
  return open / static_cast<float>(rays);
}

Vec3 Integrator::reflection(const SurfacePoint& point, const Reflectance& reflectance, Vec3 toViewer,
                            const PixelSampler& sampler, int index) {
  const CoatSample coat = sampleCoat(reflectance, point.normal, toViewer, sampler.point(SampleUse::reflection, index));
  if (!(largest(coat.weight) > 0)) return {};
  Ray ray{point.rayOrigin, coat.direction, 0, kInfinity};
  if (!isFinite(ray.direction)) return {};
  ++rays_.reflection;
  SurfacePoint seen;
  float opacity = 1;
  const float footprint = world_.camera.pixelWidth() + reflectance.alpha;
  Vec3 light = world_.sky.radiance(coat.direction);
  if (nextSurface(ray, footprint, seen, opacity)) {
    const MaterialPoint material = seen.material->evaluate(seen.texture);
    const Vec3 surface =
        seen.material->unlit() ? material.baseColor : shade(seen, material, -ray.direction, nullptr, index).sum();
    light = mix(light, surface, opacity);
  }
  const float brightest = largest(light);
  if (brightest > kBrightestReflection) light = light * (kBrightestReflection / brightest);
  return coat.weight * light;
}

}  // namespace standin::raytracer
