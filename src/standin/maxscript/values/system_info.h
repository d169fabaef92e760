// `sysInfo`: what a script may learn of the machine.
#pragma once

#include "standin/maxscript/runtime.h"

namespace standin::maxscript {

void defineSystemInfo(Runtime& runtime);

}  // namespace standin::maxscript
