// Finding the multipass effect of the render camera.
#pragma once

#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// No effect, one pass.
void clearMultipass(JobState& job);

// Sets the multipass fields from renderCameraObject at `time`, or, for the cameras of renderer A that keep their effect
// elsewhere, from their child named "Multipass". Starts from a cleared state.
void findMultipassEffect(JobState& job, hostsdk::TimeValue time, win32::simple_socket& connection);

}  // namespace corvantis
