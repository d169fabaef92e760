// The conversation with the worker, from connecting to its end.
#pragma once

#include <cstdint>
#include <string>

#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// Connects to the worker on 127.0.0.1 at `portNumber`, sends the token, answers the handshake and serves commands until
// the worker closes the connection; gives true then. Every other end is logged and gives false: a connection that
// cannot be made (a number that is no port included), that breaks, or that is closed during the handshake; a wrong
// handshake, an exception that leaves a command, a machine fault. While the connection stands the worker is told in one
// "ERROR: " reply, and the connection stays open. A time-out or a disconnection that leaves a command only abandons
// that command. A call while another is under way is refused with a line on the listener and gives false.
//
// Blocks the calling thread, which must be the host's main thread; its message queue is drained every 120 s of silence.
// `daemonRunning` is set meanwhile. Throws only when the report of an error cannot be sent either.
bool RunCorvantisDaemon(JobState& job, win32::simple_socket& connection, bool& daemonRunning, std::int32_t portNumber,
                        const std::u16string& token);

// Build date and time as the compiler gives them: "May 27 2019 17:22:03 R". A one-digit day has a second blank before
// it.
std::string buildVersionString();

}  // namespace corvantis
