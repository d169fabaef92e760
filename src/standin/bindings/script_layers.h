// The layers of the scene as scripts see them. A glTF scene has none: every node lies on the layer "0", which every
// scene of the production host has.
#pragma once

#include <memory>

#include "hostkit/script/machine/host_bindings.h"
#include "standin/host/core.h"

namespace standin::bindings {

// `LayerManager`: count, current, getLayer (from 0), getLayerFromName. A layer has name, on and isHidden, which show or
// hide all its nodes.
std::shared_ptr<hostkit::script::HostObject> scriptLayers(host::Core& core);

}  // namespace standin::bindings
