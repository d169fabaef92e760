// The numbers by which each system tells of the same socket failure.
#pragma once

#if defined(_WIN32)
#include <winsock2.h>
#else
#include <cerrno>
#endif

namespace support {

#if defined(_WIN32)
inline constexpr int kConnectionRefused = WSAECONNREFUSED;
inline constexpr int kConnectionReset = WSAECONNRESET;
inline constexpr int kNoSocket = WSAENOTSOCK;
// Of a send after the connection is known to be broken.
inline constexpr int kBrokenConnection = WSAECONNRESET;
#else
inline constexpr int kConnectionRefused = ECONNREFUSED;
inline constexpr int kConnectionReset = ECONNRESET;
inline constexpr int kNoSocket = EBADF;
inline constexpr int kBrokenConnection = EPIPE;
#endif

}  // namespace support
