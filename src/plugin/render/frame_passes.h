// Rendering a frame, whole or pass by pass.
#pragma once

#include "hostsdk/bitmap.h"
#include "hostsdk/types.h"
#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// Renders the frame at `time` (ticks) into `image`, for the job's region: with one call of the renderer, or with
// multipassEnabled in the passes of the camera's multipass effect, which adds each one to `image` and to the elements'
// accumulators.
//
// Throws std::runtime_error with the fault and its crash description when the renderer faults, and "Failed to render
// the frame." when it fails. In a pass the failure is "Failed to render the frame for pass " + i + " of " + n, thrown
// with the elements' bitmaps released; "Failed to allocate Bitmap: TheManager->Create() return NULL" when there is no
// bitmap for the passes. After a failure the effect is not told to finish, and a frame buffer stays shown.
void renderPasses(JobState& job, hostsdk::TimeValue time, hostsdk::Bitmap& image, win32::simple_socket& connection);

}  // namespace corvantis
