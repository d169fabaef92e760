// Rendering one frame of the job's scene and saving its images.
#pragma once

#include <cstdint>

#include "plugin/job/job_state.h"
#include "plugin/job/trapped_call.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// Renders `frame` and saves the main output, its preview and the render elements as the settings and the scene say,
// telling the worker each stage. Opens the renderer when it is not open, and leaves it open unless restartRendererMode.
// Returns 0: every failure is thrown, as std::runtime_error with the text for the worker; what the host throws passes
// through. Whatever way the frame ends, its bitmaps are released and the names of the outputs are as they were before;
// files already written stay.
//
// Before the first start of a job it takes the host core itself, so that without a job it fails for that reason, after
// opening the renderer. After the end of a job it fails likewise, without touching that job's camera and viewport,
// which went with the scene: the renderer is then opened for neither.
std::uint16_t RenderFrame(JobState& job, std::int32_t frame, win32::simple_socket& connection);

// The same with machine faults trapped: 1 after a fault, which leaves the frame where it stood; its bitmaps and names
// are given back when the next frame begins, the job ends or another starts. Faults of the renderer itself are trapped
// inside RenderFrame and end the frame like any failure.
Trapped<std::uint16_t> trappedRenderFrame(JobState& job, std::int32_t frame, win32::simple_socket& connection);

}  // namespace corvantis
