#include <cstdint>
#define ENTRY extern "C" __attribute__((visibility("default")))
ENTRY const char16_t* LibDescription() { return u"An old plug-in"; }
ENTRY std::uint32_t LibVersion() { return 0x51800000; }
ENTRY void LibInit() {}
