// The folders that scripts know by name: getDir #scripts, and "$scripts\lib.ms" as a file name.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "hostkit/script/machine/host_bindings.h"

namespace hostkit::script {

// Where a folder lies, without a separator at its end; made if it is missing and the options allow that. `name` in
// lower case. nullopt: there is no such folder.
std::optional<std::u16string> folderNamed(const EngineOptions& options, std::u16string_view name);
// A path that begins with "$" and the name of a folder, as the path that it stands for; any other as it is.
std::u16string expandedPath(const EngineOptions& options, std::u16string_view path);

}  // namespace hostkit::script
