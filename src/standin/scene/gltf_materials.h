// Materials, the textures they name, and the images behind these.
#pragma once

#include "standin/scene/gltf_document.h"
#include "standin/scene/loader.h"

namespace standin::scene {

// Appends the document's materials to scene.materials, in its order, and the images they use to scene.images. An image
// that is missing or cannot be decoded is a problem of the scene, and the material goes without that texture.
void loadMaterials(const GltfDocument& document, const LoadOptions& options, Scene& scene);

}  // namespace standin::scene
