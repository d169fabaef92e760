// Alone in its file, so that nothing else depends on the moment of the build.
#include "plugin/daemon/run_daemon.h"

namespace corvantis {

std::string buildVersionString() { return __DATE__ " " __TIME__ " R"; }

}  // namespace corvantis
