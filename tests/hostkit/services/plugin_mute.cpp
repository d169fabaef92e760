#include <cstdint>
#define ENTRY extern "C" __attribute__((visibility("default")))
ENTRY const char16_t* LibDescription() { return u"A plug-in that does not tell its version"; }
