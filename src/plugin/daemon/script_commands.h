// The commands that run scripts. A script's error is not caught: it leaves the command and ends the conversation.
#pragma once

#include "plugin/daemon/command.h"

namespace corvantis {

// Parameters: file, whether to set the frame, the frame, whether the value is wanted as text. "STARTED", then one
// result reply. A frame whose time in ticks does not fit 32 bits is an error reply, and nothing runs.
void executeMaxScriptFile(const CommandCall& call);
// Parameters: frame, script text. "STARTED", then one result reply.
void executeStringScript(const CommandCall& call);

}  // namespace corvantis
