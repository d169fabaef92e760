// Values between the runtime and its host.
#pragma once

#include <optional>
#include <span>

#include "hostkit/script/machine/runtime.h"

namespace hostkit::script {

Value fromHost(Runtime& runtime, const HostValue& value);
HostValue toHost(Runtime& runtime, const Value& value);

// False: there is no such property that can be written. Throws the script's error for a value that the host refuses.
bool setOfHost(Runtime& runtime, HostObject& object, const NameObject& name, const Value& value);
// nullopt: there is no such function.
std::optional<Value> callHost(Runtime& runtime, HostObject& object, const NameObject& name,
                              std::span<const Value> arguments, std::span<NameObject* const> keywordNames,
                              std::span<const Value> keywordValues);

}  // namespace hostkit::script
