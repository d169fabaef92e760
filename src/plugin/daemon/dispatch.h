// Runs one command line of the worker.
#pragma once

#include <string>

#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// Splits the line, logs it, and runs the command that its first field names, exactly and by case. An unknown word, and
// an empty line, gets the reply "ERROR: Unexpected command "<word>" received.". Throws what the command does not answer
// itself: a line that cannot be split, errors of scripts, a failed reply.
void dispatchCommand(JobState& jobState, win32::simple_socket& socket, const std::u16string& line);

}  // namespace corvantis
