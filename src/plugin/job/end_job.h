// The end of a job.
#pragma once

#include "plugin/job/job_state.h"
#include "plugin/job/trapped_call.h"

namespace corvantis {

// Gives back what a frame abandoned by a fault still holds, closes the renderer if it is open, empties the host's
// scene, and clears multipassEffect and jobRunning. Throws std::runtime_error without an open job, and what
// closeRenderer throws; the job then stays open.
void EndJob(JobState& job);

// The same with machine faults trapped.
Trapped<void> trappedEndJob(JobState& job);

// Closes the host's renderer and clears rendererOpen; does nothing when it is not open. Throws std::runtime_error when
// the host faults; rendererOpen then stays set, so that a later close tries again.
void closeRenderer(JobState& job);

}  // namespace corvantis
