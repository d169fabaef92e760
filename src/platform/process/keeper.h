// The keeper: a small program that stands between the worker and a host, so that nothing of a host outlives its worker
// however the worker ends. It holds one end of a line to the worker; the system closes the other end when the worker is
// gone, and the keeper then ends the host with everything below it. While the worker is stopped it keeps the host
// stopped.
//
// What it tells over the line, one line of text each:
//   started ID            the host runs
//   failed NUMBER         it cannot be started; the system's error number
//   exited CODE           the host's own process has ended
//   signalled NUMBER      the same, by a signal
//   gone                  nothing of the host is left; the keeper ends
// A host that exits with 0 and leaves processes behind has only launched them: they go on as the host. After any other
// end they are ended.
#pragma once

#include "platform/process/process_tree.h"

#include <map>
#include <string>
#include <vector>

namespace platform {

// The keeper's whole life: runs `command`, found as a shell finds it, with the line on standard input. Returns its exit
// code.
int keep(const std::vector<std::string>& command);

// A keeper that was started. Handles are the platform's own, close with the program that starts another, and belong to
// the caller.
struct StartedKeeper {
  ProcessId id = 0;
  int line = -1;    // both ways; closing it, or its sending half, ends the host
  int output = -1;  // what the host writes to its standard output
  int errors = -1;  // and to its standard error
};

// Starts the program `keeper` for a host's command, with `environment` set beside what this process has. The keeper
// inherits no handle but its three standard ones. std::system_error when it cannot be started.
StartedKeeper startKeeper(const std::string& keeper, const std::vector<std::string>& command,
                          const std::map<std::string, std::string>& environment);

// Waits for a keeper that has said "gone" or is lost.
void waitForKeeper(ProcessId keeper);

}  // namespace platform
