// The renderer and the render elements as scripts see them.
#pragma once

#include <memory>

#include "standin/app/core.h"
#include "standin/maxscript/host_bindings.h"

namespace standin::app {

// `renderers`: current, production, medit and activeShade, all the same one, with its samples.
std::shared_ptr<maxscript::HostObject> scriptRenderers(Core& core);
// `maxOps`: GetCurRenderElementMgr(), whose functions are NumRenderElements, GetRenderElement,
// GetRenderElementFilename, SetRenderElementFilename, GetElementsActive, SetElementsActive. Elements have elementName
// and enabled.
std::shared_ptr<maxscript::HostObject> scriptMaxOps(Core& core);

}  // namespace standin::app
