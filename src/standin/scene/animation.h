// Where nodes are at a moment. The scene must be one that loadScene returned (or keep its promises: parents without
// cycles, tracks with as many values as their keys need).
#pragma once

#include <vector>

#include "standin/scene/description.h"

namespace standin::scene {

// Times are in ticks and may lie between two; tick 0 is second 0 of the file's animations. Before its first key a
// track holds its first value, after its last key its last.
Transform localTransform(const Node& node, double ticks);

// Node to world.
Transform worldTransform(const Scene& scene, int node, double ticks);
// Of every node, in the order of scene.nodes.
std::vector<Transform> worldTransforms(const Scene& scene, double ticks);

}  // namespace standin::scene
