// What scripts see of the views, the render dialog, and the scene as a whole.
#pragma once

#include <memory>

#include "standin/app/core.h"
#include "standin/maxscript/host_bindings.h"

namespace standin::app {

// `viewport`: numViews, activeViewport (from 1, settable), getCamera(), setCamera node, getType(), setType and
// setLayout (accepted). They speak of the active viewport, which jobs render when they name no camera.
std::shared_ptr<maxscript::HostObject> scriptViewports(Core& core);
// `renderSceneDialog`: open(), close(), update(), commit() and cancel() do nothing; isOpen() is false.
std::shared_ptr<maxscript::HostObject> scriptRenderDialog();
// `rootNode`: name and children.
std::shared_ptr<maxscript::HostObject> scriptRootNode(Core& core);
// The scene's materials in file order, each with name, base_color, metalness, roughness (read-only).
maxscript::HostValue scriptMaterials(Core& core);
// The material of a node's first part; undefined when it has none.
maxscript::HostValue scriptMaterialOf(Core& core, const scene::Node& node);

}  // namespace standin::app
