// Opening the host's renderer for a job's frames.
#pragma once

#include <cstdint>

#include "hostsdk/types.h"
#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// Has the host fill renderParams, finds out whether the render camera splits a frame into passes, and opens the
// renderer for the camera or, without one, for the viewport. Does nothing while rendererOpen is set. What it finds
// (camera object, multipass effect, number of passes) holds for every frame until the renderer is opened again.
//
// Throws std::runtime_error when the render camera is no camera, or when the host cannot open the renderer or faults
// while it does; rendererOpen then stays clear, and the next frame tries again.
//
// The multipass effect is the render camera's or, for the cameras of renderer A that keep theirs elsewhere, that of
// their last child named "Multipass". A holder that is no camera, and an enabled effect that the camera does not hand
// out, count as not there: multipass is off with one pass.
void setupRenderer(JobState& job, std::int32_t frame, win32::simple_socket& connection);

// Scene time of a frame in ticks. A frame too far out for the host's 32-bit time wraps around.
hostsdk::TimeValue frameTime(std::int32_t frame, int ticksPerFrame);

}  // namespace corvantis
