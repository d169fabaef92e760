// The command that restricts rendering to a region of the output.
#pragma once

#include "plugin/daemon/command.h"

namespace corvantis {

// Parameters: padding, left, top, right, bottom, and NOCROP, CROP or BLOWUP. What cannot be carried out is replied as
// "ERROR: RegionRendering: " and a text; the edges, the type and the host's output size are then as before.
void setRegion(const CommandCall& call);

}  // namespace corvantis
