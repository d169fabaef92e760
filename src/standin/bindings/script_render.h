// What scripts see of rendering: the renderer, the render elements, the views that are rendered, the render dialog.
#pragma once

#include <memory>

#include "hostkit/script/machine/host_bindings.h"
#include "standin/host/core.h"

namespace standin::bindings {

// `renderers`: current, production, medit and activeShade, all the same one, with its samples.
std::shared_ptr<hostkit::script::HostObject> scriptRenderers(host::Core& core);
// `maxOps`: GetCurRenderElementMgr(), whose functions are NumRenderElements, GetRenderElement,
// GetRenderElementFilename, SetRenderElementFilename, GetElementsActive, SetElementsActive. Elements have elementName
// and enabled.
std::shared_ptr<hostkit::script::HostObject> scriptMaxOps(host::Core& core);
// `viewport`: numViews, activeViewport (from 1, settable), getCamera(), setCamera node, getType(), setType, setLayout
// and resetAllViews (accepted). They speak of the active viewport, which jobs render when they name no camera.
std::shared_ptr<hostkit::script::HostObject> scriptViewports(host::Core& core);
// `renderSceneDialog`: open(), close(), update(), commit() and cancel() do nothing; isOpen() is false.
std::shared_ptr<hostkit::script::HostObject> scriptRenderDialog(host::Core& core);

}  // namespace standin::bindings
