// Names for files that are written aside and then renamed. A name tells which process writes the file, so that what
// one that was killed has left can be told from what another is writing, on a folder that machines share too.
#pragma once

#include <string>

namespace platform {

// A hidden name in the folder of `nativePath` that nobody else uses, not in another process, process namespace or
// machine either. Ends in ".part".
std::string asideName(const std::string& nativePath);

// Removes the files of such names in the folder whose writers are known to be gone: processes of this machine that do
// not run any more, and whoever has not touched them for a day. Never fails.
void sweepAside(const std::string& nativeFolder);

}  // namespace platform
