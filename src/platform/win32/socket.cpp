#include "platform/socket.h"

#include <winsock2.h>
// After winsock2.h, as Windows wants it.
#include <ws2tcpip.h>

#include <algorithm>
#include <climits>

namespace platform {
namespace {

static_assert(sizeof(SOCKET) == sizeof(SocketHandle) && INVALID_SOCKET == kInvalidSocket);

// The calls count in int.
int countOf(std::size_t count) { return static_cast<int>(std::min<std::size_t>(count, INT_MAX)); }

}  // namespace

bool startSocketLibrary() {
  WSADATA details{};
  return ::WSAStartup(MAKEWORD(2, 2), &details) == 0;
}

void stopSocketLibrary() { ::WSACleanup(); }

bool parseAddress(const std::string& text, std::uint32_t& address) {
  in_addr parsed{};
  if (text.find('\0') != std::string::npos || ::inet_pton(AF_INET, text.c_str(), &parsed) != 1) return false;
  address = parsed.s_addr;
  return true;
}

SocketHandle openSocket(SocketType type) {
  const bool isStream = type == SocketType::stream;
  const SOCKET opened = ::socket(AF_INET, isStream ? SOCK_STREAM : SOCK_DGRAM, 0);
  if (opened == INVALID_SOCKET) return kInvalidSocket;
  // Programs that the host starts are not to keep the connection open.
  (void)::SetHandleInformation(reinterpret_cast<HANDLE>(opened), HANDLE_FLAG_INHERIT, 0);
  if (isStream) {
    const BOOL on = TRUE;
    // Only a delay is lost where this is refused.
    (void)::setsockopt(opened, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
  }
  return opened;
}

bool connectSocket(SocketHandle socket, std::uint32_t address, std::uint16_t port) {
  sockaddr_in peer{};
  peer.sin_family = AF_INET;
  peer.sin_port = htons(port);
  peer.sin_addr.s_addr = address;
  return ::connect(socket, reinterpret_cast<const sockaddr*>(&peer), sizeof peer) == 0;
}

std::ptrdiff_t sendBytes(SocketHandle socket, const char* bytes, std::size_t count) {
  return ::send(socket, bytes, countOf(count), 0);
}

std::ptrdiff_t receiveBytes(SocketHandle socket, char* bytes, std::size_t count) {
  return ::recv(socket, bytes, countOf(count), 0);
}

std::optional<std::ptrdiff_t> receiveArrived(SocketHandle, char*, std::size_t) { return std::nullopt; }

void closeSocket(SocketHandle socket) {
  (void)::shutdown(socket, SD_BOTH);
  (void)::closesocket(socket);
}

int lastSocketError() { return ::WSAGetLastError(); }

}  // namespace platform
