// Rendering a frame, whole or pass by pass.
#pragma once

#include "hostsdk/bitmap.h"
#include "hostsdk/types.h"
#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// Renders the frame at `time` (ticks) into `image` with one call of the renderer. Throws std::runtime_error
// "Failed to render the frame." when it fails, and the fault with its crash description when it faults.
void renderWhole(JobState& job, hostsdk::TimeValue time, hostsdk::Bitmap& image, win32::simple_socket& connection);

// Renders the frame in the passes of the camera's multipass effect, which adds each one to `image` and to the elements'
// accumulators. Throws std::runtime_error "Failed to render the frame for pass " + i + " of " + n, with the elements'
// bitmaps released; the fault with its crash description; "Failed to allocate Bitmap: TheManager->Create() return NULL"
// when there is no bitmap for the passes. After a failure the effect is not told to finish.
void renderMultipass(JobState& job, hostsdk::TimeValue time, hostsdk::Bitmap& image, win32::simple_socket& connection);

}  // namespace corvantis
