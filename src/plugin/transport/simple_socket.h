// The packet socket: whole messages over one blocking TCP connection.
//
// A message is its payload's length as a big-endian unsigned 32-bit number, then the payload. The socket knows nothing
// of what the bytes mean.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/socket.h"
#include "protocol/framing.h"

namespace corvantis::win32 {

// The largest payload that receive accepts, and the largest message, header included, that send accepts.
inline constexpr std::uint32_t MAX_PACKET_SIZE = protocol::kLargestMessage;
// The time-out that every caller in this system passes to receive.
inline constexpr std::int32_t COMMAND_TIMEOUT_MS = protocol::kAnswerTimeoutMs;

class simple_socket_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};
// The end time passed before the data arrived.
class simple_socket_timeout_error : public simple_socket_error {
 public:
  using simple_socket_error::simple_socket_error;
};
// The connection was refused or failed.
class simple_socket_could_not_connect_error : public simple_socket_error {
 public:
  using simple_socket_error::simple_socket_error;
};
// The peer closed the connection.
class simple_socket_disconnect_error : public simple_socket_error {
 public:
  using simple_socket_error::simple_socket_error;
};

// Not for two threads at once. Every failure is an exception of the family above; only a read error, a close by the
// peer and a failed connect close the connection, every other failure leaves it as it was.
class simple_socket {
 public:
  // Starts the platform's socket library; simple_socket_error "WSAStartup: failed" when that fails.
  simple_socket();
  // Closes the connection and stops the socket library.
  ~simple_socket();
  simple_socket(const simple_socket&) = delete;
  simple_socket& operator=(const simple_socket&) = delete;

  // `host` is a dotted IPv4 address (names are not looked up); protocolId 1 is TCP, 2 is UDP.
  // Throws simple_socket_could_not_connect_error "connect: Failed to connect to server at port " + port when the
  // connection is refused, simple_socket_error for what makes no sense: already connected, bad address, bad protocol.
  void connect(const std::string& host, std::uint16_t port, std::int32_t protocolId);

  // Sends one message in one send call: at most 99996 bytes of payload. Throws simple_socket_error.
  void send(std::string_view payload);

  // The payload of the next message, of at most MAX_PACKET_SIZE bytes. `timeoutMs` covers the whole message; 0 polls, a
  // negative value waits for ever. Throws simple_socket_timeout_error, simple_socket_disconnect_error, and
  // simple_socket_error for the rest. After a message announced too large its bytes are still unread.
  std::string receive(std::int32_t timeoutMs);

  void close(bool alsoListening) noexcept;

  bool isConnected() const noexcept { return connectedSocket != platform::kInvalidSocket; }

 protected:
  explicit simple_socket(bool libraryStarted);

  platform::SocketHandle listeningSocket = platform::kInvalidSocket;  // nothing in this system opens one
  platform::SocketHandle connectedSocket = platform::kInvalidSocket;

 private:
  std::uint32_t receive_header(bool useEndTime, std::uint32_t endTime);
  void receive_data(char* buffer, std::size_t count, bool useEndTime, std::uint32_t endTime);
  std::ptrdiff_t receive_until(char* buffer, std::size_t count, std::uint32_t endTime);
  void wait_readable(std::uint32_t endTime);
};

}  // namespace corvantis::win32
