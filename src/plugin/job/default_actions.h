// What the host does when a scene it loads lacks external files, texture coordinates, plug-ins or external scenes.
#pragma once

#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// Hands the host the action of each kind: ignore where the settings say so, else fail.
void applyDefaultActions(JobState& job);

// Tells the worker the actions that the host has in force now, whoever set them.
void reportDefaultActions(JobState& job, win32::simple_socket& connection);

}  // namespace corvantis
