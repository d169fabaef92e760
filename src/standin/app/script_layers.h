// The layers of the scene as scripts see them. A glTF scene has none: every node lies on the layer "0", which every
// scene of the production host has.
#pragma once

#include <memory>

#include "standin/app/core.h"
#include "standin/maxscript/host_bindings.h"

namespace standin::app {

// `LayerManager`: count, current, getLayer (from 0), getLayerFromName. A layer has name, on and isHidden, which show or
// hide all its nodes.
std::shared_ptr<maxscript::HostObject> scriptLayers(Core& core);

}  // namespace standin::app
