// Whether scripts may touch files.
#pragma once

#include "hostkit/script/machine/runtime.h"

namespace hostkit::script {

// Throws a script error when the host was set up without file access.
void requireFileAccess(Runtime& runtime);

}  // namespace hostkit::script
