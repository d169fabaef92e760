// Follows a camera ray through the scene and gathers what it sees.
#pragma once

#include <cstdint>
#include <vector>

#include "standin/raytracer/brdf.h"
#include "standin/raytracer/camera.h"
#include "standin/raytracer/embree_scene.h"
#include "standin/raytracer/lights.h"
#include "standin/raytracer/material.h"
#include "standin/raytracer/sampler.h"
#include "standin/raytracer/sky.h"
#include "standin/raytracer/surface.h"

namespace standin::raytracer {

// What rays are traced in. All of it stays as it is while they are.
struct FrameWorld {
  const EmbreeScene& geometry;
  SurfaceReader surfaces;
  std::vector<PlacedLight> lights;
  Sky sky;
  Camera camera;
  int samples;     // a pixel
  float skyReach;  // how far a surface keeps the sky from others, scene units
};

struct RayCounts {
  std::uint64_t camera = 0, shadow = 0, sky = 0, reflection = 0;
};

// What one sample of a pixel saw. Colours are multiplied by the coverage; the rest is that of the nearest surface, and
// only holds when the coverage is above 0.
struct SampleResult {
  float coverage = 0;
  Vec3 beauty, albedo, directLight, emission;
  Vec3 normal, position;
  float depth = 0;
  int objectId = 0;
};

class Integrator {
 public:
  explicit Integrator(const FrameWorld& world) : world_(world) {}

  // The sample `index` of the pixel that `sampler` stands for; (x, y) is its place in the image, in pixels.
  SampleResult trace(const PixelSampler& sampler, int index, float x, float y);

  const RayCounts& rays() const { return rays_; }

 private:
  // Light that a surface point sends to the viewer.
  struct Shading {
    Vec3 direct, sky, reflected, emission;
    Vec3 sum() const { return direct + sky + reflected + emission; }
  };

  bool nextSurface(Ray& ray, float footprint, SurfacePoint& point, float& opacity);
  Shading shade(const SurfacePoint& point, const MaterialPoint& material, Vec3 toViewer, const PixelSampler* sampler,
                int index);
  Vec3 directLight(const SurfacePoint& point, const Reflectance& reflectance, Vec3 toViewer);
  float lightThrough(Vec3 origin, Vec3 direction, float distance);
  float skyOpenness(const SurfacePoint& point, const PixelSampler& sampler, int index);
  Vec3 reflection(const SurfacePoint& point, const Reflectance& reflectance, Vec3 toViewer, const PixelSampler& sampler,
                  int index);

  const FrameWorld& world_;
  RayCounts rays_;
};

}  // namespace standin::raytracer
