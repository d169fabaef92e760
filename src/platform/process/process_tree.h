// What runs below a process, as the system's own tables show it.
#pragma once

#include <cstdint>
#include <vector>

namespace platform {

using ProcessId = std::int64_t;

struct ProcessState {
  ProcessId id = 0;
  ProcessId parent = 0;
  char state = '?';  // as the system's tools show it: R runs, S sleeps, D waits for a disk, T stopped, Z ended
  std::uint64_t cpuMilliseconds = 0;  // used so far, in the program and in the system
  std::uint64_t residentBytes = 0;    // memory in use
};

// The processes below `root`, itself left out; those that have ended and were not yet waited for are among them.
// Empty where the system does not tell.
std::vector<ProcessState> processesBelow(ProcessId root);

// Whether the process is stopped (SIGSTOP, Ctrl-Z, a scheduler).
bool isStopped(ProcessId process);

enum class Order { stop, go, end };
// Stops, continues or ends the processes; those that are gone or belong to others are passed over.
void order(const std::vector<ProcessState>& processes, Order order);

ProcessId ownProcessId();

// From now on a process below this one whose parent has ended becomes a child of this one.
void adoptOrphans();
// Ends whatever runs below this process. False when some of it has not ended yet: ask again.
bool endAllBelow();

}  // namespace platform
