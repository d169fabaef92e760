// Whether scripts may touch files.
#pragma once

#include "standin/maxscript/runtime.h"

namespace standin::maxscript {

// Throws a script error when the host was set up without file access.
void requireFileAccess(Runtime& runtime);

}  // namespace standin::maxscript
