// Constants that every script can use, and the built-in structures that hold settings.
#pragma once

#include "hostkit/script/machine/runtime.h"

namespace hostkit::script {

void defineConstants(Runtime& runtime);

}  // namespace hostkit::script
