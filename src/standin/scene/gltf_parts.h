// What a document holds, brought into a scene part by part: materials, then meshes, then nodes, then animations.
#pragma once

#include <vector>

#include "standin/scene/gltf_document.h"
#include "standin/scene/loader.h"

namespace standin::scene {

// Appends the document's materials to scene.materials, in its order, and the images they use to scene.images. An image
// that is missing or cannot be decoded is a problem of the scene, and the material goes without that texture.
void loadMaterials(const GltfDocument& document, const LoadOptions& options, Scene& scene);

// Appends the document's meshes to scene.meshes, in its order, as triangle lists; a mesh keeps its place even when
// nothing of it can be drawn. scene.materials already holds the document's. A textured primitive without the texture
// coordinates is a problem of the scene.
void loadMeshes(const GltfDocument& document, Scene& scene);

// Index in the document's list of nodes for each node of the scene, or the other way round with kNone for a node that
// the default scene does not reach.
struct NodeNumbers {
  std::vector<int> inFile, inScene;
};

// Fills scene.nodes, roots, cameras and lights. scene.meshes already holds the document's. Every camera node gets a
// camera of its own. Throws SceneError when a node has two parents or is its own ancestor.
NodeNumbers loadNodes(const GltfDocument& document, Scene& scene);

// Adds the tracks of all the document's animations to their nodes. Where two animations move the same property of a
// node, the first one counts.
void loadAnimations(const GltfDocument& document, const NodeNumbers& numbers, Scene& scene);

// The index of the document's default scene; kNone when it has none.
int defaultSceneOf(const GltfDocument& document);

}  // namespace standin::scene
