// Constants that every script can use, and the built-in structures that hold settings.
#pragma once

#include "standin/maxscript/runtime.h"

namespace standin::maxscript {

void defineConstants(Runtime& runtime);

}  // namespace standin::maxscript
