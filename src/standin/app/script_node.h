// A scene node as scripts see it.
#pragma once

#include <memory>
#include <vector>

#include "standin/app/core.h"
#include "standin/maxscript/host_bindings.h"

namespace standin::app {

// Properties: name, parent, children, position (pos), rotation, scale, transform, isHidden, isSelected, visibility,
// renderable, material; fov of cameras (horizontal, degrees); on (enabled), multiplier (intensity) and color (rgb) of
// lights. User properties through getUserProp and setUserProp. Positions are in world space, rotation and scale those
// of the node itself. Setting a placement ends its animation: the node stays where it was put.
//
// A node of a scene that has been replaced has no properties any more, but isValidNode's name.
std::shared_ptr<maxscript::HostObject> scriptNode(Core& core, int index);
std::vector<std::shared_ptr<maxscript::HostObject>> scriptNodes(Core& core);

}  // namespace standin::app
