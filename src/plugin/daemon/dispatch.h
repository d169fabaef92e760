// Runs one command line of the worker.
#pragma once

#include <string>
#include <vector>

#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// Splits the line, logs it, and runs the command that its first field names, exactly and by case. An unknown word, and
// an empty line, gets the reply "ERROR: Unexpected command "<word>" received.". Throws what the command does not answer
// itself: a line that cannot be split, errors of scripts, a failed reply.
void dispatchCommand(JobState& job, win32::simple_socket& connection, const std::u16string& line);

// The fields of a command line. A comma outside double quotes ends a field; double quotes are dropped wherever they
// stand; a backslash makes the next character literal (backslash, comma, double quote) or, before n, a line feed.
// Blanks stay. An empty line has no field, a final comma gives a final empty one. Throws std::runtime_error "unknown
// escape sequence" for any other character after a backslash and "cannot end with escape" for a backslash at the end.
std::vector<std::u16string> splitCommandLine(const std::u16string& line);

}  // namespace corvantis
