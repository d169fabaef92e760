// Values between the runtime and its host, and the scene's nodes as scripts find them.
#pragma once

#include <optional>
#include <span>

#include "hostkit/script/machine/runtime.h"

namespace hostkit::script {

Value fromHost(Runtime& runtime, const HostValue& value);
HostValue toHost(Runtime& runtime, const Value& value);

// nullopt: there is no such function.
std::optional<Value> callHost(Runtime& runtime, HostObject& object, const NameObject& name,
                              std::span<const Value> arguments, std::span<NameObject* const> keywordNames,
                              std::span<const Value> keywordValues);

// $name or $name/child: the node, or undefined. With wildcards a node set. $ alone: the selection.
Value resolvePath(Runtime& runtime, const std::u16string& path);
// The nodes that a node set stands for now, as a new array.
Value nodesOf(Runtime& runtime, const NodeSetObject& set);
Value nodeByName(Runtime& runtime, std::u16string_view name);

}  // namespace hostkit::script
