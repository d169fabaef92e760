// Moving a finished file onto a destination that may be locked for a while.
#pragma once

#include <string>

#include "plugin/job/settings.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// Copies `source` over `destination` and deletes `source`. Each failed attempt is told to the worker and followed by a
// wait of as many seconds as there were attempts: five go to the destination itself and then, with useAltOutput, five
// more to names that end in "_alt_0" to "_alt_4". Blocks for up to 15 or 55 seconds by the platform's clock.
//
// Throws std::runtime_error "Failed to save " + destination + ": " + the system's last error text; `source` then stays
// where it is. A file that is to be moved onto itself stays, and counts as saved.
void moveWithRetries(const JobSettings& settings, const std::u16string& source, const std::u16string& destination,
                     win32::simple_socket& connection);

}  // namespace corvantis
