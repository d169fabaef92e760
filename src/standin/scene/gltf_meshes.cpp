#include "standin/scene/gltf_parts.h"

#include <algorithm>
#include <numeric>

#include "standin/scene/gltf_accessors.h"
#include "standin/scene/mesh_completion.h"
#include "standin/scene/scene_error.h"

namespace standin::scene {

namespace {

using Indices = std::vector<std::uint32_t>;

Indices fromStrip(const Indices& strip) {
  Indices list;
  for (std::size_t i = 0; i + 2 < strip.size(); ++i) {
    const std::size_t odd = i % 2;  // every second triangle winds the other way
    list.insert(list.end(), {strip[i], strip[i + 1 + odd], strip[i + 2 - odd]});
  }
  return list;
}

Indices fromFan(const Indices& fan) {
  Indices list;
  for (std::size_t i = 1; i + 1 < fan.size(); ++i) list.insert(list.end(), {fan[i], fan[i + 1], fan[0]});
  return list;
}

bool hasTriangles(int mode) { return mode >= TINYGLTF_MODE_TRIANGLES; }

// Builds one primitive after the other of one mesh.
class PrimitiveReader {
 public:
  PrimitiveReader(const GltfDocument& document, Scene& scene) : accessors_(document), scene_(scene) {}

  void read(const tinygltf::Mesh& source, std::size_t meshIndex, Mesh& mesh) {
    for (std::size_t i = 0; i < source.primitives.size(); ++i) {
      source_ = &source.primitives[i];
      place_ = "meshes[" + std::to_string(meshIndex) + "].primitives[" + std::to_string(i) + "]";
      if (!hasTriangles(source_->mode)) {
        scene_.warnings.push_back(place_ + ": points and lines are not drawn");
        continue;
      }
      if (!source_->targets.empty()) scene_.warnings.push_back(place_ + ": morph targets are passed over");
      mesh.primitives.push_back(readOne());
      reportMissingTexCoords(mesh);
    }
  }

 private:
  Primitive readOne() {
    Primitive p;
    p.material = source_->material;
    const int positions = attribute("POSITION");
    if (positions == kNone) throw SceneError(place_ + ".attributes.POSITION: expected an index, got nothing");
    vertices_ = accessors_.count(positions);
    p.positions = accessors_.elements<Vec3>(positions, place_ + ".POSITION");
    p.normals = vertexArray<Vec3>("NORMAL");
    p.tangents = vertexArray<Vec4>("TANGENT");
    p.uv0 = vertexArray<Vec2>("TEXCOORD_0");
    p.uv1 = vertexArray<Vec2>("TEXCOORD_1");
    p.colors = colors();
    p.indices = triangles();
    if (p.normals.empty())
      addFlatNormals(p);
    else
      repairNormals(p);
    completeTangents(p);
    return p;
  }

  int attribute(const char* name) const {
    const auto found = source_->attributes.find(name);
    return found == source_->attributes.end() ? kNone : found->second;
  }

  // Empty when the file has no such attribute.
  template <class Element>
  std::vector<Element> vertexArray(const char* name) const {
    const int accessor = attribute(name);
    if (accessor == kNone) return {};
    std::vector<Element> out = accessors_.elements<Element>(accessor, place_ + "." + name);
    checkLength(out.size(), name);
    return out;
  }

  void checkLength(std::size_t length, const char* name) const {
    if (length != vertices_)
      throw SceneError(place_ + "." + name + ": expected " + std::to_string(vertices_) + " elements as POSITION, got " +
                       std::to_string(length));
  }

  std::vector<Vec4> colors() const {
    const int accessor = attribute("COLOR_0");
    if (accessor == kNone || accessors_.components(accessor) == 4) return vertexArray<Vec4>("COLOR_0");
    const std::vector<Vec3> opaque = vertexArray<Vec3>("COLOR_0");
    std::vector<Vec4> out(opaque.size());
    std::transform(opaque.begin(), opaque.end(), out.begin(), [](Vec3 c) { return Vec4{c.x, c.y, c.z, 1}; });
    return out;
  }

  Indices triangles() {
    Indices indices;
    if (source_->indices >= 0) {
      indices = accessors_.indices(source_->indices, place_ + ".indices");
      for (const std::uint32_t index : indices)
        if (index >= vertices_)
          throw SceneError(place_ + ".indices: expected indices below " + std::to_string(vertices_) + ", got " +
                           std::to_string(index));
    } else {
      indices.resize(vertices_);
      std::iota(indices.begin(), indices.end(), 0U);
    }
    if (source_->mode == TINYGLTF_MODE_TRIANGLE_STRIP) return fromStrip(indices);
    if (source_->mode == TINYGLTF_MODE_TRIANGLE_FAN) return fromFan(indices);
    if (indices.size() % 3 != 0) {
      scene_.warnings.push_back(place_ + ": the last " + std::to_string(indices.size() % 3) +
                                " indices make no triangle and are passed over");
      indices.resize(indices.size() - indices.size() % 3);
    }
    return indices;
  }

  const Material* materialOf(const Primitive& p) const {
    return p.material == kNone ? nullptr : &scene_.materials[static_cast<std::size_t>(p.material)];
  }

  void completeTangents(Primitive& p) const {
    const Material* material = materialOf(p);
    if (!p.tangents.empty() || material == nullptr || !material->normalTexture) return;
    const std::vector<Vec2>& uv = material->normalTexture->texCoord == 0 ? p.uv0 : p.uv1;
    if (!uv.empty()) addTangents(p, uv);
  }

  void reportMissingTexCoords(const Mesh& mesh) {
    const Primitive& p = mesh.primitives.back();
    const Material* material = materialOf(p);
    if (material == nullptr || p.positions.empty()) return;
    bool missing[2] = {false, false};
    for (const auto* texture : {&material->baseColorTexture, &material->metallicRoughnessTexture,
                                &material->normalTexture, &material->emissionTexture})
      if (texture->has_value()) missing[(*texture)->texCoord] |= ((*texture)->texCoord == 0 ? p.uv0 : p.uv1).empty();
    for (int set = 0; set < 2; ++set)
      if (missing[set])
        scene_.problems.push_back({LoadProblem::Kind::missingTexCoords,
                                   "Missing texture coordinates: set " + std::to_string(set) + " of mesh \"" +
                                       mesh.name + "\" for material \"" + material->name + "\""});
  }

  Accessors accessors_;
  Scene& scene_;
  const tinygltf::Primitive* source_ = nullptr;
  std::string place_;
  std::size_t vertices_ = 0;
};

}  // namespace

void loadMeshes(const GltfDocument& document, Scene& scene) {
  PrimitiveReader reader(document, scene);
  for (std::size_t i = 0; i < document.model.meshes.size(); ++i) {
    const tinygltf::Mesh& source = document.model.meshes[i];
    Mesh mesh;
    mesh.name = source.name.empty() ? "mesh" + std::to_string(i) : source.name;
    reader.read(source, i, mesh);
    scene.meshes.push_back(std::move(mesh));
  }
}

}  // namespace standin::scene
