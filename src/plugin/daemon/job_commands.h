// The commands that control a job. Each is a step of the command table, called with its parameters counted.
#pragma once

#include "plugin/daemon/command.h"

namespace corvantis {

// The frame is stored first, also outside a job; then "STARTED", then error reports, each followed by a pause of 500
// ms, then "SUCCESS" or "ERROR: Failed to save file.".
void renderTask(const CommandCall& call);
void currentTask(const CommandCall& call);
// Error reports, if any, then always "SUCCESS Scene loaded successfully".
void startJob(const CommandCall& call);
// Error reports, if any, then always "SUCCESS".
void endJob(const CommandCall& call);
void ignoreContinue(const CommandCall& call);

}  // namespace corvantis
