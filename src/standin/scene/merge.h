// Puts one scene into another.
#pragma once

#include "standin/scene/description.h"

namespace standin::scene {

// Adds everything that is to be seen of `part` (nodes with their animation, meshes, materials, images, cameras, lights)
// behind what `whole` has, with all indices shifted, and its problems and warnings. Its settings are dropped.
void mergeScene(Scene&& part, Scene& whole);

}  // namespace standin::scene
