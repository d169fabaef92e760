// The check that an interface has been given an identity of its own.
#pragma once

#include <string>

#include "hostsdk/types.h"

namespace corvantis::max3d::fpwrapper {

// Refuses the host's default id: reports it to the host's log with a dialog (where a host is bound) and throws
// std::runtime_error with the same text, which names the interface.
void refuseDefaultId(hostsdk::Interface_ID id, const std::u16string& interfaceName);

}  // namespace corvantis::max3d::fpwrapper
