// Meshes as triangle lists.
#pragma once

#include "standin/scene/description.h"
#include "standin/scene/gltf_document.h"

namespace standin::scene {

// Appends the document's meshes to scene.meshes, in its order; a mesh keeps its place even when nothing of it can be
// drawn. scene.materials already holds the document's. A textured primitive without the texture coordinates is a
// problem of the scene.
void loadMeshes(const GltfDocument& document, Scene& scene);

}  // namespace standin::scene
