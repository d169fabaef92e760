#include <cstdint>
#define ENTRY extern "C" __attribute__((visibility("default")))
ENTRY const char16_t* LibDescription() { return u"A test plug-in"; }
ENTRY std::uint32_t LibVersion() { return 0x55F03700; }
ENTRY void LibInit() {}
