#include "support/build_folders.h"

namespace support {

std::string sourceFolder() { return CORVANTIS_SOURCE_DIR; }
std::string programFolder() { return CORVANTIS_BINARY_DIR "/bin"; }
std::string testProgramFolder() { return CORVANTIS_BINARY_DIR "/tests"; }

}  // namespace support
