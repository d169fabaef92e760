#include "support/half_readable.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace support {

#if defined(_WIN32)

HalfReadable::HalfReadable() : start_(::VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE, PAGE_NOACCESS)) {
  ::VirtualAlloc(start_, kPage, MEM_COMMIT, PAGE_READWRITE);
}

HalfReadable::~HalfReadable() { ::VirtualFree(start_, 0, MEM_RELEASE); }

#else

HalfReadable::HalfReadable() : start_(::mmap(nullptr, 2 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
  ::mprotect(start_, kPage, PROT_READ | PROT_WRITE);
}

HalfReadable::~HalfReadable() { ::munmap(start_, 2 * kPage); }

#endif

}  // namespace support
