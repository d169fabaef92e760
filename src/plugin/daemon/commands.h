// The commands that set one setting each. All are steps of the command table; none replies when it succeeds.
#pragma once

#include "plugin/daemon/command.h"

namespace corvantis {

// Sets a flag of the settings; parameters are not looked at.
template <bool JobSettings::*Flag, bool Value = true>
void setFlag(const CommandCall& call) {
  call.jobState.settings.*Flag = Value;
}

void setSlaveFolders(const CommandCall& call);
void setTempFolder(const CommandCall& call);
void setFrameNumberBase(const CommandCall& call);
void setJpegOutput(const CommandCall& call);
void setBlackFrameCheck(const CommandCall& call);

void announceSaveFileOverride(const CommandCall& call);
// Throws boost::bad_lexical_cast, which ends the conversation, with the override already in force.
void overrideSaveFile(const CommandCall& call);
void dropSaveFileOverride(const CommandCall& call);

void announceOutputFilename(const CommandCall& call);
void setOutputFilename(const CommandCall& call);
void setElementFilename(const CommandCall& call);
void setGamma(const CommandCall& call);
void announcePathConfigFile(const CommandCall& call);
void setPathConfigFile(const CommandCall& call);
void ignoreElementsByName(const CommandCall& call);

}  // namespace corvantis
