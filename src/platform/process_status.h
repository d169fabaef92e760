// How a child process ended.
#pragma once

namespace platform {

struct ProcessEnd {
  int code = 0;            // exit code, or the signal's number
  bool signalled = false;  // ended by a signal (never on Windows)
};
// Reads the platform's own wait status.
ProcessEnd processEnd(int nativeStatus);

}  // namespace platform
