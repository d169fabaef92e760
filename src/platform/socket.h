// The few socket calls that the packet socket needs: Winsock 2 on Windows, BSD sockets elsewhere. Errors are numbers of
// the platform's own (10054 on Windows is 104 on Linux); no call raises a signal, and an interrupted call is resumed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace platform {

using SocketHandle = std::uintptr_t;
inline constexpr SocketHandle kInvalidSocket = ~SocketHandle{0};

enum class SocketType { stream, datagram };
enum class WaitResult { readable, timedOut, failed };

// Starts and stops the platform's socket library (version 2.2 on Windows; nothing to do elsewhere). Calls nest.
bool startSocketLibrary();
void stopSocketLibrary();

// Whether `text` is a dotted IPv4 address ("127.0.0.1"); `address` is then set, in network byte order.
bool parseAddress(const std::string& text, std::uint32_t& address);

// A new internet socket with TCP_NODELAY set on streams; kInvalidSocket on failure.
SocketHandle openSocket(SocketType type);
bool connectSocket(SocketHandle socket, std::uint32_t address, std::uint16_t port);

// One send call; the number of bytes taken, or -1. Never raises a signal on a broken connection.
std::ptrdiff_t sendBytes(SocketHandle socket, const char* bytes, std::size_t count);
// One receive call; the number of bytes read, 0 when the peer has closed, or -1.
std::ptrdiff_t receiveBytes(SocketHandle socket, char* bytes, std::size_t count);
// The same without a wait, for a caller that waits otherwise: nullopt when nothing has arrived, for a handle that is no
// socket, which the wait then tells, and always on Windows, where to look costs as much as to wait.
std::optional<std::ptrdiff_t> receiveArrived(SocketHandle socket, char* bytes, std::size_t count);

// Shuts the socket down in both directions and closes it.
void closeSocket(SocketHandle socket);

// The number of the calling thread's last socket failure.
int lastSocketError();

}  // namespace platform
