// The signals by which users, terminals and schedulers ask a process to end (INT, TERM, HUP), caught while the object
// lives. A signal that was ignored when the object was made (nohup, a job in a shell's background) stays ignored. One
// object at a time.
#pragma once

namespace platform {

enum class Stop { none, interrupt, terminate, hangUp };

class StopSignals {
 public:
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  // The first that came.
  Stop asked() const;
  // Whether a second one followed.
  bool insists() const;
  // A handle of the platform's own that can be read from the first signal on; nobody reads it. Borrowed.
  int handle() const;
};

}  // namespace platform
