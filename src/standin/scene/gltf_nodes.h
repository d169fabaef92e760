// The node tree of a document's default scene, with cameras, lights and animation.
#pragma once

#include "standin/scene/description.h"
#include "standin/scene/gltf_document.h"

namespace standin::scene {

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
