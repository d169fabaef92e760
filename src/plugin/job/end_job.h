// The end of a job.
#pragma once

#include <string>

#include "plugin/job/job_state.h"

namespace corvantis {

// Closes the renderer if it is open, empties the host's scene, and clears multipassEffect and jobRunning. Throws
// std::runtime_error without an open job, and what closeRenderer throws; the job then stays open.
void EndJob(JobState& job);

// The same with machine faults trapped: `sehText` is emptied, and after a fault tells which.
void trappedEndJob(JobState& job, std::string& sehText);

// Closes the host's renderer and clears rendererOpen; does nothing when it is not open. Throws std::runtime_error when
// the host faults; rendererOpen then stays set, so that a later close tries again.
void closeRenderer(JobState& job);

// The host's CloseCurRenderer with machine faults trapped.
void trappedCloseCurRenderer(JobState& job, std::string& sehText);

}  // namespace corvantis
