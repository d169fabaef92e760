// Published interfaces of plug-ins as script globals.
#pragma once

#include "hostkit/script/machine/runtime.h"

namespace hostkit::script {

// Makes every registered interface a global of its name. Functions take their declared parameters: numbers are
// converted, booleans must be booleans (or whole numbers), values travel as handles. Properties without a setter are
// read-only.
void publishInterfaces(Runtime& runtime);

}  // namespace hostkit::script
