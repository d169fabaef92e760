// `sysInfo`: what a script may learn of the machine.
#pragma once

#include "hostkit/script/machine/runtime.h"

namespace hostkit::script {

void defineSystemInfo(Runtime& runtime);

}  // namespace hostkit::script
