// The renderer and the render elements as scripts see them.
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

}  // namespace standin::bindings
