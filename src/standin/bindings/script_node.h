// A scene node as scripts see it.
#pragma once

#include <memory>
#include <vector>

#include "hostkit/script/machine/host_bindings.h"
#include "standin/host/core.h"

namespace standin::bindings {

// Properties: name, parent, children, position (pos), rotation, scale, transform, isHidden, isSelected, visibility,
// renderable, material; fov of cameras (horizontal, degrees); on (enabled), multiplier (intensity) and color (rgb) of
// lights. User properties through getUserProp and setUserProp. Positions are in world space, rotation and scale those
// of the node itself. Setting a placement ends its animation: the node stays where it was put.
//
// A node of a scene that has been replaced has no properties any more, but isValidNode's name.
std::shared_ptr<hostkit::script::HostObject> scriptNode(host::Core& core, int index);
std::vector<std::shared_ptr<hostkit::script::HostObject>> scriptNodes(host::Core& core);
// An array of the nodes with these indices.
hostkit::script::HostValue scriptNodeList(host::Core& core, const std::vector<int>& indices);

}  // namespace standin::bindings
