#include "platform/process_status.h"

namespace platform {

ProcessEnd processEnd(int nativeStatus) { return {nativeStatus, false}; }

}  // namespace platform
