#include "standin/raytracer/embree_scene.h"

#include <cstring>
#include <stdexcept>

namespace standin::raytracer {

namespace {

// What the filter below tells the ray that met it. Embree hands the context through to filters by its address.
struct FilterContext {
  RTCIntersectContext embree;
  bool met = false;
};

// Lets a shadow ray pass and notes that it met something that needs a closer look.
void passAndNote(const RTCFilterFunctionNArguments* arguments) {
  reinterpret_cast<FilterContext*>(arguments->context)->met = true;
  for (unsigned int i = 0; i < arguments->N; ++i) arguments->valid[i] = 0;
}

bool letsLightPass(const scene::Scene& scene, const scene::Primitive& primitive) {
  const auto index = static_cast<std::size_t>(primitive.material);
  return primitive.material >= 0 && index < scene.materials.size() &&
         scene.materials[index].alphaMode != scene::Material::Alpha::opaque;
}

float determinant(const Transform& t) {
  const Vec3 x{t.m[0], t.m[4], t.m[8]}, y{t.m[1], t.m[5], t.m[9]}, z{t.m[2], t.m[6], t.m[10]};
  return dot(x, cross(y, z));
}

// Embree wants every coordinate of a ray below some 1e18, in the space of the scene and in that of each instance.
constexpr float kFarthestOrigin = 1e8F, kLargestScale = 1e9F, kFarthestInstance = 1e17F;

bool below(const Transform& t) {
  for (std::size_t i = 0; i < t.m.size(); ++i) {
    if (!(std::fabs(t.m[i]) <= (i % 4 == 3 ? kFarthestInstance : kLargestScale))) return false;
  }
  return true;
}

bool placeable(const Transform& t) { return below(t) && std::isfinite(1 / determinant(t)) && below(scene::inverse(t)); }

bool traceable(const Ray& ray) {
  const Vec3 o = ray.origin, d = ray.direction;
  return std::fabs(o.x) <= kFarthestOrigin && std::fabs(o.y) <= kFarthestOrigin && std::fabs(o.z) <= kFarthestOrigin &&
         dot(d, d) <= 4;
}

void setRay(RTCRay& out, const Ray& ray) {
  out.org_x = ray.origin.x;
  out.org_y = ray.origin.y;
  out.org_z = ray.origin.z;
  out.dir_x = ray.direction.x;
  out.dir_y = ray.direction.y;
  out.dir_z = ray.direction.z;
  out.tnear = ray.nearest;
  out.tfar = ray.farthest;
  out.time = 0;
  out.mask = ~0U;
  out.id = 0;
  out.flags = 0;
}

}  // namespace

EmbreeScene::EmbreeScene(const scene::Scene& scene) : device_(rtcNewDevice(nullptr)) {
  if (!device_) throw std::runtime_error("Ray tracer: no device");
  rtcSetDeviceErrorFunction(device_.get(), storeError, this);
  meshes_.resize(scene.meshes.size());
  for (std::size_t i = 0; i < meshes_.size(); ++i) buildMesh(scene, scene.meshes[i], meshes_[i]);
}

EmbreeScene::~EmbreeScene() = default;

void EmbreeScene::storeError(void* self, RTCError, const char* text) {
  auto& scene = *static_cast<EmbreeScene*>(self);
  const std::lock_guard lock(scene.errorGuard_);
  if (scene.error_.empty()) scene.error_ = text;
}

void EmbreeScene::check() {
  const std::lock_guard lock(errorGuard_);
  if (error_.empty()) return;
  const std::string text = "Ray tracer: " + error_;
  error_.clear();
  throw std::runtime_error(text);
}

void EmbreeScene::buildMesh(const scene::Scene& scene, const scene::Mesh& mesh, MeshScene& built) {
  built.scene.reset(rtcNewScene(device_.get()));
  rtcSetSceneFlags(built.scene.get(), RTC_SCENE_FLAG_ROBUST);
  built.filtered.resize(mesh.primitives.size());
  for (std::size_t i = 0; i < mesh.primitives.size(); ++i) {
    const scene::Primitive& primitive = mesh.primitives[i];
    const std::size_t triangles = primitive.indices.size() / 3;
    if (triangles == 0 || primitive.positions.empty()) continue;
    built.empty = false;
    RTCGeometry geometry = rtcNewGeometry(device_.get(), RTC_GEOMETRY_TYPE_TRIANGLE);
    // Embree reads four floats a vertex, beyond the end of a vector of three: it gets a padded copy.
    void* vertices = rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, sizeof(Vec3),
                                             primitive.positions.size());
    if (vertices) std::memcpy(vertices, primitive.positions.data(), primitive.positions.size() * sizeof(Vec3));
    rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, primitive.indices.data(), 0,
                               3 * sizeof(std::uint32_t), triangles);
    built.filtered[i] = letsLightPass(scene, primitive);
    if (built.filtered[i]) rtcSetGeometryOccludedFilterFunction(geometry, passAndNote);
    rtcCommitGeometry(geometry);
    rtcAttachGeometryByID(built.scene.get(), geometry, static_cast<unsigned int>(i));
    rtcReleaseGeometry(geometry);
  }
  rtcCommitScene(built.scene.get());
  check();
}

void EmbreeScene::refreshFilters(const scene::Scene& scene) {
  for (std::size_t m = 0; m < meshes_.size(); ++m) {
    MeshScene& built = meshes_[m];
    bool changed = false;
    for (std::size_t i = 0; i < built.filtered.size(); ++i) {
      const char now = letsLightPass(scene, scene.meshes[m].primitives[i]);
      if (now == built.filtered[i]) continue;
      built.filtered[i] = now;
      RTCGeometry geometry = rtcGetGeometry(built.scene.get(), static_cast<unsigned int>(i));
      if (!geometry) continue;
      rtcSetGeometryOccludedFilterFunction(geometry, now ? passAndNote : nullptr);
      rtcCommitGeometry(geometry);
      changed = true;
    }
    if (changed) {
      rtcCommitScene(built.scene.get());
      top_.reset();
    }
  }
}

void EmbreeScene::place(const scene::Scene& scene, const std::vector<Transform>& worldTransforms) {
  refreshFilters(scene);
  std::vector<Instance> placed;
  for (std::size_t i = 0; i < scene.nodes.size(); ++i) {
    const scene::Node& node = scene.nodes[i];
    if (!node.visible || node.mesh < 0 || static_cast<std::size_t>(node.mesh) >= meshes_.size()) continue;
    if (meshes_[static_cast<std::size_t>(node.mesh)].empty || !placeable(worldTransforms[i])) continue;
    placed.push_back({node.mesh, node.objectId, worldTransforms[i], determinant(worldTransforms[i]) < 0});
  }
  const auto sameMesh = [](const Instance& a, const Instance& b) { return a.mesh == b.mesh; };
  const bool sameSet = top_ && placed.size() == instances_.size() &&
                       std::equal(placed.begin(), placed.end(), instances_.begin(), sameMesh);
  std::swap(instances_, placed);
  if (!sameSet) {
    attachInstances();
  } else {
    bool moved = false;
    for (std::size_t i = 0; i < instances_.size(); ++i) {
      if (instances_[i].toWorld == placed[i].toWorld) continue;
      RTCGeometry geometry = rtcGetGeometry(top_.get(), static_cast<unsigned int>(i));
      rtcSetGeometryTransform(geometry, 0, RTC_FORMAT_FLOAT3X4_ROW_MAJOR, instances_[i].toWorld.m.data());
      rtcCommitGeometry(geometry);
      moved = true;
    }
    if (moved) rtcCommitScene(top_.get());
  }
  check();
}

void EmbreeScene::attachInstances() {
  top_.reset(rtcNewScene(device_.get()));
  rtcSetSceneFlags(top_.get(), RTC_SCENE_FLAG_ROBUST | RTC_SCENE_FLAG_DYNAMIC);
  for (std::size_t i = 0; i < instances_.size(); ++i) {
    RTCGeometry geometry = rtcNewGeometry(device_.get(), RTC_GEOMETRY_TYPE_INSTANCE);
    rtcSetGeometryInstancedScene(geometry, meshes_[static_cast<std::size_t>(instances_[i].mesh)].scene.get());
    rtcSetGeometryTransform(geometry, 0, RTC_FORMAT_FLOAT3X4_ROW_MAJOR, instances_[i].toWorld.m.data());
    rtcCommitGeometry(geometry);
    rtcAttachGeometryByID(top_.get(), geometry, static_cast<unsigned int>(i));
    rtcReleaseGeometry(geometry);
  }
  rtcCommitScene(top_.get());
}

bool EmbreeScene::closest(const Ray& ray, Hit& hit) const {
  if (!traceable(ray)) return false;
  RTCIntersectContext context;
  rtcInitIntersectContext(&context);
  RTCRayHit query;
  setRay(query.ray, ray);
  query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
  query.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
  rtcIntersect1(top_.get(), &context, &query);
  if (query.hit.geomID == RTC_INVALID_GEOMETRY_ID) return false;
  hit = {query.ray.tfar, query.hit.u, query.hit.v, query.hit.instID[0], query.hit.geomID, query.hit.primID};
  return true;
}

Occlusion EmbreeScene::occlusion(const Ray& ray) const {
  if (!traceable(ray)) return Occlusion::clear;
  FilterContext context;
  rtcInitIntersectContext(&context.embree);
  RTCRay query;
  setRay(query, ray);
  rtcOccluded1(top_.get(), &context.embree, &query);
  if (query.tfar < 0) return Occlusion::blocked;
  return context.met ? Occlusion::filtered : Occlusion::clear;
}

float EmbreeScene::radius() const {
  if (instances_.empty()) return 0;
  RTCBounds bounds;
  rtcGetSceneBounds(top_.get(), &bounds);
  const Vec3 diagonal{bounds.upper_x - bounds.lower_x, bounds.upper_y - bounds.lower_y,
                      bounds.upper_z - bounds.lower_z};
  const float radius = 0.5F * length(diagonal);
  return std::isfinite(radius) ? radius : 0;
}

}  // namespace standin::raytracer
