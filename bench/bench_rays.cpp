// Rays a second of whole pictures, shading and all, beside what Embree does with the pictures' camera rays alone.
#include <embree3/rtcore.h>
#include <fmt/core.h>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string>
#include <vector>

#include "bench/report.h"
#include "standin/raytracer/camera.h"
#include "standin/raytracer/float_mode.h"
#include "standin/raytracer/renderer.h"
#include "standin/raytracer/sampler.h"

namespace {

using namespace standin;
using namespace standin::raytracer;

constexpr int kWidth = 640, kHeight = 480, kSamples = 4, kRounds = 5;

double secondsOf(const auto& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// A hilly floor of 2 * cells * cells triangles below a field of balls.
scene::Mesh hills(int cells) {
  scene::Primitive primitive;
  for (int z = 0; z <= cells; ++z) {
    for (int x = 0; x <= cells; ++x) {
      const float u = 20 * (static_cast<float>(x) / static_cast<float>(cells) - 0.5F);
      const float v = 20 * (static_cast<float>(z) / static_cast<float>(cells) - 0.5F);
      primitive.positions.push_back({u, 0.3F * std::sin(u * 1.7F) * std::cos(v * 1.3F), v});
      const float du = 0.51F * std::cos(u * 1.7F) * std::cos(v * 1.3F);
      const float dv = -0.39F * std::sin(u * 1.7F) * std::sin(v * 1.3F);
      primitive.normals.push_back(scene::normalize({-du, 1, -dv}));
    }
  }
  for (int z = 0; z < cells; ++z) {
    for (int x = 0; x < cells; ++x) {
      const auto a = static_cast<std::uint32_t>(z * (cells + 1) + x), b = a + static_cast<std::uint32_t>(cells) + 1;
      primitive.indices.insert(primitive.indices.end(), {a, b, a + 1, a + 1, b, b + 1});
    }
  }
  primitive.material = 0;
  return {"hills", {primitive}};
}

scene::Mesh ball(int rings) {
  scene::Primitive primitive;
  for (int r = 0; r <= rings; ++r) {
    for (int s = 0; s <= 2 * rings; ++s) {
      const float theta = kPi * static_cast<float>(r) / static_cast<float>(rings);
      const float phi = kPi * static_cast<float>(s) / static_cast<float>(rings);
      primitive.normals.push_back({std::sin(theta) * std::cos(phi), std::cos(theta), -std::sin(theta) * std::sin(phi)});
      primitive.positions.push_back(primitive.normals.back() * 0.6F);
    }
  }
  for (int r = 0; r < rings; ++r) {
    for (int s = 0; s < 2 * rings; ++s) {
      const auto a = static_cast<std::uint32_t>(r * (2 * rings + 1) + s);
      const auto b = a + static_cast<std::uint32_t>(2 * rings) + 1;
      primitive.indices.insert(primitive.indices.end(), {a, b, b + 1, a, b + 1, a + 1});
    }
  }
  primitive.material = 1;
  return {"ball", {primitive}};
}

scene::Scene field(int detail) {
  scene::Scene scene;
  scene::Material ground, paint;
  ground.baseColor = {0.5F, 0.6F, 0.4F, 1};
  ground.metallic = 0;
  paint.baseColor = {0.7F, 0.3F, 0.2F, 1};
  paint.metallic = 0;
  paint.roughness = 0.5F;
  scene.materials = {ground, paint};
  scene.meshes = {hills(8 * detail), ball(detail)};
  const auto add = [&](int mesh, int light, const scene::Transform& place) {
    scene::Node node;
    node.mesh = mesh;
    node.light = light;
    node.matrix = place;
    scene.nodes.push_back(node);
  };
  add(0, scene::kNone, {});
  for (int i = 0; i < 49; ++i) {
    const float x = static_cast<float>(i % 7) * 2 - 6, z = static_cast<float>(i / 7) * 2 - 6;
    add(1, scene::kNone, scene::fromTranslationRotationScale({x, 0.7F, z}, {}, {1, 1, 1}));
  }
  scene::Light sun, bulb;
  sun.kind = scene::Light::Kind::directional;
  sun.intensity = 2;
  bulb.intensity = 20;
  scene.lights = {sun, bulb};
  add(scene::kNone, 0, scene::lookAt({3, 5, 4}, {0, 0, 0}));
  add(scene::kNone, 1, scene::fromTranslationRotationScale({0, 4, 0}, {}, {1, 1, 1}));
  return scene;
}

FrameRequest requestOf() {
  FrameRequest request;
  request.width = kWidth;
  request.height = kHeight;
  request.samples = kSamples;
  request.view.worldToCamera = scene::inverse(scene::lookAt({7, 5, 9}, {0, 0, 0}));
  return request;
}

// Embree without anything around it: one mesh of all the scene's triangles, and a list of rays to meet it.
class BareEmbree {
 public:
  explicit BareEmbree(const scene::Scene& scene) : device_(rtcNewDevice(nullptr)), scene_(rtcNewScene(device_)) {
    for (const scene::Node& node : scene.nodes) {
      if (node.mesh < 0) continue;
      for (const scene::Primitive& p : scene.meshes[static_cast<std::size_t>(node.mesh)].primitives)
        attach(p, *node.matrix);
    }
    rtcCommitScene(scene_);
    const FrameRequest request = requestOf();
    const Camera camera(request.view, kWidth, kHeight, 1);
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        const PixelSampler sampler(x, y, 0, 0, kSamples);
        for (int i = 0; i < kSamples; ++i) {
          const scene::Vec2 at = sampler.point(SampleUse::pixel, i);
          rays_.push_back(camera.ray(static_cast<float>(x) + at.x, static_cast<float>(y) + at.y));
        }
      }
    }
  }
  ~BareEmbree() {
    rtcReleaseScene(scene_);
    rtcReleaseDevice(device_);
  }
  BareEmbree(const BareEmbree&) = delete;
  BareEmbree& operator=(const BareEmbree&) = delete;

  std::size_t rays() const { return rays_.size(); }

  void trace() const {
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, rays_.size(), 4096), [this](const auto& range) {
      const FlushToZero floatMode;
      RTCIntersectContext context;
      rtcInitIntersectContext(&context);
      for (std::size_t i = range.begin(); i < range.end(); ++i) {
        RTCRayHit query{};
        query.ray.org_x = rays_[i].origin.x;
        query.ray.org_y = rays_[i].origin.y;
        query.ray.org_z = rays_[i].origin.z;
        query.ray.dir_x = rays_[i].direction.x;
        query.ray.dir_y = rays_[i].direction.y;
        query.ray.dir_z = rays_[i].direction.z;
        query.ray.tfar = std::numeric_limits<float>::infinity();
        query.ray.mask = ~0U;
        query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
        query.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
        rtcIntersect1(scene_, &context, &query);
      }
    });
  }

 private:
  void attach(const scene::Primitive& primitive, const scene::Transform& place) {
    RTCGeometry geometry = rtcNewGeometry(device_, RTC_GEOMETRY_TYPE_TRIANGLE);
    auto* vertices = static_cast<scene::Vec3*>(rtcSetNewGeometryBuffer(
        geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, sizeof(scene::Vec3), primitive.positions.size()));
    for (const scene::Vec3 p : primitive.positions) *vertices++ = scene::transformPoint(place, p);
    auto* indices = static_cast<std::uint32_t*>(rtcSetNewGeometryBuffer(
        geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, 3 * sizeof(std::uint32_t), primitive.indices.size() / 3));
    std::copy(primitive.indices.begin(), primitive.indices.end(), indices);
    rtcCommitGeometry(geometry);
    rtcAttachGeometry(scene_, geometry);
    rtcReleaseGeometry(geometry);
  }

  RTCDevice device_;
  RTCScene scene_;
  std::vector<CameraRay> rays_;
};

// The best of several rounds, ours and the peer's in turn.
void measure(int detail, double goal) {
  const scene::Scene scene = field(detail);
  const BareEmbree bare(scene);
  Renderer renderer(scene);
  std::vector<float> pixels(static_cast<std::size_t>(kWidth) * kHeight * 4);
  FrameRequest request = requestOf();
  request.outputs = {{scene::ElementType::beauty, pixels.data(), 0, 0, kWidth, kHeight}};
  double ours = 0, peer = 0;
  for (int round = 0; round < kRounds; ++round) {
    const double picture = secondsOf([&] { renderer.render(request); });
    const FrameStatistics& s = renderer.statistics();
    const auto rays = static_cast<double>(s.cameraRays + s.shadowRays + s.skyRays + s.reflectionRays);
    ours = std::max(ours, rays / picture * 1e-6);
    peer = std::max(peer, static_cast<double>(bare.rays()) / secondsOf([&] { bare.trace(); }) * 1e-6);
  }
  const std::string name = fmt::format("ray tracer, {} thousand triangles", renderer.statistics().faces / 1000);
  bench::reportAtLeast({name, ours, peer, "M rays/s"}, goal);
}

}  // namespace

int main() {
  measure(16, 0.5);
  measure(64, 0.5);
}
