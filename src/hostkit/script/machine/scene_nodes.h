// The scene's nodes as scripts find them: by name, by path, and in sets.
#pragma once

#include <span>

#include "hostkit/script/machine/runtime.h"

namespace hostkit::script {

// Sets of nodes that have a name: `objects` and $objects, `lights`, `selection`, ...
struct NamedNodeSet {
  std::u16string_view name;
  NodeSetObject::Which which;
  std::u16string_view superClass;  // ofClass
};
std::span<const NamedNodeSet> namedNodeSets();

// $name or $name/child: the node, or undefined. With wildcards a node set. $ alone: the selection.
Value resolvePath(Runtime& runtime, const std::u16string& path);
// The nodes that a node set stands for now, as a new array.
Value nodesOf(Runtime& runtime, const NodeSetObject& set);
Value nodeByName(Runtime& runtime, std::u16string_view name);

}  // namespace hostkit::script
