// What the host asks a plug-in library for, by name.
#include <cstdint>

#include "hostsdk/api.h"
#include "hostsdk/types.h"

HOSTSDK_ENTRY_POINT const char16_t* LibDescription() { return u"Corvantis, Cloud interface"; }
HOSTSDK_ENTRY_POINT std::uint32_t LibVersion() { return hostsdk::kHostVersion; }
HOSTSDK_ENTRY_POINT void LibInit() {}
