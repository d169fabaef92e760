// For the few expectations that differ between the systems; what they stand for is said where they are used.
#pragma once

namespace support {

#if defined(_WIN32)
inline constexpr bool kIsWindows = true;
#else
inline constexpr bool kIsWindows = false;
#endif

// Whether Wine stands in for Windows.
bool runsUnderWine();

}  // namespace support
