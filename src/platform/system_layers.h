// The system's own layers, one per platform, behind what clock() and files() hand out.
#pragma once

#include "platform/clock.h"
#include "platform/files.h"

namespace platform {

Clock& systemClock();
Files& systemFiles();

}  // namespace platform
