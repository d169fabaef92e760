// What every output image of a job has in common.
#pragma once

#include "hostsdk/bitmap.h"
#include "plugin/job/job_state.h"

namespace corvantis {

// Gives `info` the pixel type that the renderer wants (32-bit float with requirement 3, else 16-bit integer), the alpha
// flag, and the size and pixel aspect of the scene's render settings. A size beyond 16 bits loses its upper bits.
void prepareOutputInfo(const JobState& job, hostsdk::BitmapInfo& info);

// Asks the current renderer, created if needed; false when there is none.
bool rendererHasRequirement(const JobState& job, int requirement);

}  // namespace corvantis
