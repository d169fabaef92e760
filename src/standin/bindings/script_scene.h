// What scripts see of the scene as a whole: its layers, its root and its materials.
#pragma once

#include <memory>

#include "hostkit/script/machine/host_bindings.h"
#include "standin/host/core.h"

namespace standin::bindings {

// `LayerManager`: count, current, getLayer (from 0), getLayerFromName. A glTF scene has no layers: every node lies on
// the layer "0", which every scene of the production host has. A layer has name, on and isHidden, which show or hide
// all its nodes, and current.
std::shared_ptr<hostkit::script::HostObject> scriptLayers(host::Core& core);
// `rootNode`: name and children.
std::shared_ptr<hostkit::script::HostObject> scriptRootNode(host::Core& core);
// The scene's materials in file order, each with name, base_color, metalness, roughness (read-only).
hostkit::script::HostValue scriptMaterials(host::Core& core);
// The material of a node's first part; undefined when it has none.
hostkit::script::HostValue scriptMaterialOf(host::Core& core, const scene::Node& node);

}  // namespace standin::bindings
