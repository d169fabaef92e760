// Renderers that need treatment of their own.
#pragma once

#include "plugin/job/job_state.h"

namespace corvantis {

// Clears the three renderer flags.
void forgetRenderer(JobState& job);

// Sets the flag of the current renderer; a renderer that is not in the table, or none, leaves all three clear.
void recogniseRenderer(JobState& job);

}  // namespace corvantis
