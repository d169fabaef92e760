#include "platform/socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

namespace platform {
namespace {

int descriptor(SocketHandle socket) { return static_cast<int>(socket); }

// An interrupted connect goes on in the background and cannot be called again: wait for its outcome.
bool finishConnect(int fd) {
  pollfd watched{fd, POLLOUT, 0};
  while (::poll(&watched, 1, -1) < 0) {
    if (errno != EINTR) return false;
  }
  int outcome = 0;
  socklen_t size = sizeof outcome;
  if (::getsockopt(fd, SOL_SOCKET, SO_ERROR, &outcome, &size) != 0) return false;
  if (outcome != 0) errno = outcome;
  return outcome == 0;
}

}  // namespace

bool startSocketLibrary() { return true; }

void stopSocketLibrary() {}

bool parseAddress(const std::string& text, std::uint32_t& address) {
  in_addr parsed{};
  if (text.find('\0') != std::string::npos || ::inet_pton(AF_INET, text.c_str(), &parsed) != 1) return false;
  address = parsed.s_addr;
  return true;
}

SocketHandle openSocket(SocketType type) {
  const bool isStream = type == SocketType::stream;
  const int fd = ::socket(AF_INET, (isStream ? SOCK_STREAM : SOCK_DGRAM) | SOCK_CLOEXEC, 0);
  if (fd < 0) return kInvalidSocket;
  if (isStream) {
    const int on = 1;
    // Only a delay is lost where this is refused.
    (void)::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  }
  return static_cast<SocketHandle>(fd);
}

bool connectSocket(SocketHandle socket, std::uint32_t address, std::uint16_t port) {
  sockaddr_in peer{};
  peer.sin_family = AF_INET;
  peer.sin_port = htons(port);
  peer.sin_addr.s_addr = address;
  const int fd = descriptor(socket);
  if (::connect(fd, reinterpret_cast<const sockaddr*>(&peer), sizeof peer) == 0) return true;
  return errno == EINTR && finishConnect(fd);
}

std::ptrdiff_t sendBytes(SocketHandle socket, const char* bytes, std::size_t count) {
  for (;;) {
    const ssize_t taken = ::send(descriptor(socket), bytes, count, MSG_NOSIGNAL);
    if (taken >= 0 || errno != EINTR) return taken;
  }
}

std::ptrdiff_t receiveBytes(SocketHandle socket, char* bytes, std::size_t count) {
  for (;;) {
    const ssize_t read = ::recv(descriptor(socket), bytes, count, 0);
    if (read >= 0 || errno != EINTR) return read;
  }
}

std::optional<std::ptrdiff_t> receiveArrived(SocketHandle socket, char* bytes, std::size_t count) {
  for (;;) {
    const ssize_t read = ::recv(descriptor(socket), bytes, count, MSG_DONTWAIT);
    if (read >= 0) return read;
    if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EBADF) return std::nullopt;
    if (errno != EINTR) return -1;
  }
}

void closeSocket(SocketHandle socket) {
  (void)::shutdown(descriptor(socket), SHUT_RDWR);
  (void)::close(descriptor(socket));
}

int lastSocketError() { return errno; }

}  // namespace platform
