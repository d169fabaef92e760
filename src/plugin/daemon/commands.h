// The commands that are more than a setting stored: steps of the command table, called with their parameters counted.
#pragma once

#include "plugin/daemon/command.h"

namespace corvantis {

// The job.
//
// The frame is stored first, also outside a job; then "STARTED", then error reports, each followed by a pause of 500
// ms, then "SUCCESS" or "ERROR: Failed to save file.".
void renderTask(const CommandCall& call);
void currentTask(const CommandCall& call);
// Error reports, if any, then always "SUCCESS Scene loaded successfully".
void startJob(const CommandCall& call);
// Error reports, if any, then always "SUCCESS".
void endJob(const CommandCall& call);
void ignoreContinue(const CommandCall& call);

// Scripts. A script's error is not caught: it leaves the command and ends the conversation.
//
// Parameters: file, whether to set the frame, the frame, whether the value is wanted as text. "STARTED", then one
// result reply. A frame whose time in ticks does not fit 32 bits is an error reply, and nothing runs.
void executeMaxScriptFile(const CommandCall& call);
// Parameters: frame, script text. "STARTED", then one result reply.
void executeStringScript(const CommandCall& call);

// Settings. None replies when it succeeds.
//
// Parameters: padding, left, top, right, bottom, and NOCROP, CROP or BLOWUP. What cannot be carried out is replied as
// "ERROR: RegionRendering: " and a text; the edges, the type and the host's output size are then as before.
void setRegion(const CommandCall& call);
void setBlackFrameCheck(const CommandCall& call);
// Throws boost::bad_lexical_cast, which ends the conversation, with the override already in force.
void overrideSaveFile(const CommandCall& call);
void setElementFilename(const CommandCall& call);
void setGamma(const CommandCall& call);
void ignoreElementsByName(const CommandCall& call);

}  // namespace corvantis
