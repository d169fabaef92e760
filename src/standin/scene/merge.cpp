#include "standin/scene/merge.h"

#include <algorithm>
#include <iterator>

namespace standin::scene {

namespace {

template <class Element>
int sizeOf(const std::vector<Element>& list) {
  return static_cast<int>(list.size());
}

void shift(int& index, int by) {
  if (index != kNone) index += by;
}

template <class Element>
void append(std::vector<Element>& from, std::vector<Element>& to) {
  to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
}

void shiftNodes(Scene& part, const Scene& whole) {
  int objects = 0;
  for (const Node& node : whole.nodes) objects = std::max(objects, node.objectId);
  for (Node& node : part.nodes) {
    shift(node.parent, sizeOf(whole.nodes));
    for (int& child : node.children) shift(child, sizeOf(whole.nodes));
    shift(node.mesh, sizeOf(whole.meshes));
    shift(node.camera, sizeOf(whole.cameras));
    shift(node.light, sizeOf(whole.lights));
    if (node.objectId != 0) node.objectId += objects;
  }
  for (int& root : part.roots) shift(root, sizeOf(whole.nodes));
}

void shiftSurfaces(Scene& part, const Scene& whole) {
  for (Mesh& mesh : part.meshes)
    for (Primitive& primitive : mesh.primitives) shift(primitive.material, sizeOf(whole.materials));
  for (Material& material : part.materials)
    for (auto* texture : {&material.baseColorTexture, &material.metallicRoughnessTexture, &material.normalTexture,
                          &material.emissionTexture})
      if (texture->has_value()) shift((*texture)->image, sizeOf(whole.images));
}

}  // namespace

void mergeScene(Scene&& part, Scene& whole) {
  shiftNodes(part, whole);
  shiftSurfaces(part, whole);
  append(part.nodes, whole.nodes);
  append(part.roots, whole.roots);
  append(part.meshes, whole.meshes);
  append(part.materials, whole.materials);
  append(part.images, whole.images);
  append(part.cameras, whole.cameras);
  append(part.lights, whole.lights);
  append(part.problems, whole.problems);
  append(part.warnings, whole.warnings);
}

}  // namespace standin::scene
