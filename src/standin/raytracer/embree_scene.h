// The scene's meshes in Embree: one acceleration structure a mesh, built once, and one over their placed instances,
// built anew when something moved.
#pragma once

#include <embree3/rtcore.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "standin/raytracer/vector.h"
#include "standin/scene/description.h"

namespace standin::raytracer {

// A mesh at a place of the scene.
struct Instance {
  int mesh = 0;
  int objectId = 0;
  Transform toWorld;
  bool mirrored = false;  // the determinant is negative
};

// Meets nothing when its origin is farther than 1e8 from the scene's, or when a number of it is not finite.
struct Ray {
  Vec3 origin, direction;  // the direction is of unit length
  float nearest = 0, farthest = 0;
};

struct Hit {
  float distance;
  float u, v;  // barycentric: the weights of the triangle's second and third vertex
  unsigned int instance, primitive, triangle;
};

enum class Occlusion { clear, blocked, filtered /* nothing opaque, but something that may let light through */ };

class EmbreeScene {
 public:
  // Builds the meshes. Vertices that are no finite numbers lose their triangles. Refers to the indices of `scene`'s
  // meshes, which must stay. Throws std::runtime_error "Ray tracer: " + Embree's text.
  explicit EmbreeScene(const scene::Scene& scene);
  ~EmbreeScene();
  EmbreeScene(const EmbreeScene&) = delete;
  EmbreeScene& operator=(const EmbreeScene&) = delete;

  // Puts the visible nodes' meshes where `worldTransforms` says, one transform a node. A transform that flattens its
  // mesh or is no finite number hides it. Must not run while rays are traced. Throws as the constructor.
  void place(const scene::Scene& scene, const std::vector<Transform>& worldTransforms);

  // Traces from any number of threads at a time.
  bool closest(const Ray& ray, Hit& hit) const;
  Occlusion occlusion(const Ray& ray) const;

  const std::vector<Instance>& instances() const { return instances_; }
  // Half the diagonal of the box around the placed instances; 0 when there are none.
  float radius() const;

 private:
  struct DeviceRelease {
    void operator()(RTCDevice device) const { rtcReleaseDevice(device); }
  };
  struct SceneRelease {
    void operator()(RTCScene scene) const { rtcReleaseScene(scene); }
  };
  using DeviceHandle = std::unique_ptr<RTCDeviceTy, DeviceRelease>;
  using SceneHandle = std::unique_ptr<RTCSceneTy, SceneRelease>;

  struct MeshScene {
    SceneHandle scene;
    std::vector<char> filtered;  // by primitive: light may pass through
    bool empty = true;           // without a triangle
  };

  void buildMesh(const scene::Scene& scene, const scene::Mesh& mesh, MeshScene& built);
  void refreshFilters(const scene::Scene& scene);
  void attachInstances();
  void check();
  static void storeError(void* self, RTCError code, const char* text);

  DeviceHandle device_;
  std::mutex errorGuard_;
  std::string error_;  // the first since the last check
  std::vector<MeshScene> meshes_;
  SceneHandle top_;
  std::vector<Instance> instances_;
};

}  // namespace standin::raytracer
