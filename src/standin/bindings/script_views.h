// What scripts see of the views, the render dialog, and the scene as a whole.
#pragma once

#include <memory>

#include "hostkit/script/machine/host_bindings.h"
#include "standin/host/core.h"

namespace standin::bindings {

// `viewport`: numViews, activeViewport (from 1, settable), getCamera(), setCamera node, getType(), setType and
// setLayout (accepted). They speak of the active viewport, which jobs render when they name no camera.
std::shared_ptr<hostkit::script::HostObject> scriptViewports(host::Core& core);
// `renderSceneDialog`: open(), close(), update(), commit() and cancel() do nothing; isOpen() is false.
std::shared_ptr<hostkit::script::HostObject> scriptRenderDialog();
// `rootNode`: name and children.
std::shared_ptr<hostkit::script::HostObject> scriptRootNode(host::Core& core);
// The scene's materials in file order, each with name, base_color, metalness, roughness (read-only).
hostkit::script::HostValue scriptMaterials(host::Core& core);
// The material of a node's first part; undefined when it has none.
hostkit::script::HostValue scriptMaterialOf(host::Core& core, const scene::Node& node);

}  // namespace standin::bindings
