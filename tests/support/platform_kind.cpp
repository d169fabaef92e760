#include "support/platform_kind.h"

#if defined(_WIN32)
#include <windows.h>
#endif

namespace support {

bool runsUnderWine() {
#if defined(_WIN32)
  return ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
#else
  return false;
#endif
}

}  // namespace support
