// Opening the host's renderer for a job's frames.
#pragma once

#include <cstdint>
#include <string>

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
// A multipass holder that is no camera, and an enabled effect that the camera does not hand out, count as not there:
// multipass is off with one pass.
void setupRenderer(JobState& job, std::int32_t frame, win32::simple_socket& connection);

// The host's OpenCurRenderer at the scene's render size, with machine faults trapped: 0 after a fault, and `sehText`
// then tells which. One of `camera` and `view` is null.
int trappedOpenCurRenderer(JobState& job, hostsdk::INode* camera, hostsdk::ViewExp* view, std::string& sehText);

}  // namespace corvantis
