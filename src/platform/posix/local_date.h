// Local dates for fault filters, which may not ask the system for its time zone: that takes a lock and may read a file.
#pragma once

#include <ctime>

#include "platform/modules.h"

namespace platform::posix {

// Takes down how far local time is from UTC at this moment. Not for a filter. Any thread.
void noteUtcOffset();

// The local date of a moment, as far from UTC as was noted last; UTC before the first note. Async-signal-safe.
FileDate localDate(std::time_t moment);

}  // namespace platform::posix
