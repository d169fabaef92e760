#include "plugin/transport/simple_socket.h"

#include <algorithm>
#include <array>

#include "platform/clock.h"

namespace corvantis::win32 {
namespace {

constexpr std::size_t kHeaderSize = protocol::kHeaderSize;
constexpr std::size_t kReadChunk = 0x400000;

using Header = std::array<char, kHeaderSize>;

Header encodeLength(std::uint32_t length) {
  return {static_cast<char>(length >> 24), static_cast<char>(length >> 16), static_cast<char>(length >> 8),
          static_cast<char>(length)};
}

std::uint32_t decodeLength(const Header& header) {
  std::uint32_t length = 0;
  for (const char byte : header) length = length << 8 | static_cast<unsigned char>(byte);
  return length;
}

std::string lastErrorNumber() { return std::to_string(platform::lastSocketError()); }

void closeHandle(platform::SocketHandle& socket) noexcept {
  if (socket != platform::kInvalidSocket) platform::closeSocket(socket);
  socket = platform::kInvalidSocket;
}

}  // namespace

simple_socket::simple_socket() : simple_socket(platform::startSocketLibrary()) {}

simple_socket::simple_socket(bool libraryStarted) {
  if (!libraryStarted) throw simple_socket_error("WSAStartup: failed");
}

simple_socket::~simple_socket() {
  close(true);
  platform::stopSocketLibrary();
}

void simple_socket::connect(const std::string& host, std::uint16_t port, std::int32_t protocolId) {
  if (isConnected()) throw simple_socket_error("simple_socket::connect: Already connected.");
  if (listeningSocket != platform::kInvalidSocket) {
    throw simple_socket_error("simple_socket::connect: Already listening for a connection.");
  }
  std::uint32_t address = 0;
  if (!platform::parseAddress(host, address)) {
    throw simple_socket_error("simple_socket::connect: Invalid IP address specified, " + host);
  }
  if (protocolId != 1 && protocolId != 2) throw simple_socket_error("socket: Invalid protocol id");

  connectedSocket =
      platform::openSocket(protocolId == 1 ? platform::SocketType::stream : platform::SocketType::datagram);
  if (!isConnected()) throw simple_socket_error("socket: Failed to create tcp/ip socket.");
  if (!platform::connectSocket(connectedSocket, address, port)) {
    close(true);
    throw simple_socket_could_not_connect_error("connect: Failed to connect to server at port " + std::to_string(port));
  }
}

void simple_socket::send(std::string_view payload) {
  if (!isConnected()) throw simple_socket_error("simple_socket: send called while not connected.");
  if (payload.size() > MAX_PACKET_SIZE - kHeaderSize) {
    throw simple_socket_error("simple_socket::send: Tried to send too much data at once.");
  }

  const Header header = encodeLength(static_cast<std::uint32_t>(payload.size()));
  std::string message;
  message.reserve(kHeaderSize + payload.size());
  message.append(header.data(), header.size()).append(payload);

  const std::ptrdiff_t sent = platform::sendBytes(connectedSocket, message.data(), message.size());
  if (sent < 0) {
    const std::string errorNumber = lastErrorNumber();
    throw simple_socket_error("send: error trying to send data: WSAError code " + errorNumber);
  }
  if (static_cast<std::size_t>(sent) < message.size()) {
    throw simple_socket_error("send: failed to send the entire message.");
  }
}

std::string simple_socket::receive(std::int32_t timeoutMs) {
  if (!isConnected()) throw simple_socket_error("simple_socket: receive while not connected.");

  // One end time for the whole message. Tick counts wrap, and so does this sum.
  const bool useEndTime = timeoutMs >= 0;
  const std::uint32_t endTime = useEndTime ? platform::clock().tickCount() + static_cast<std::uint32_t>(timeoutMs) : 0;

  const std::uint32_t length = receive_header(useEndTime, endTime);
  if (length > MAX_PACKET_SIZE) {
    throw simple_socket_error("simple_socket::receive: Invalid packet size (given " + std::to_string(length) + ")");
  }
  std::string payload(length, '\0');
  receive_data(payload.data(), payload.size(), useEndTime, endTime);
  return payload;
}

void simple_socket::close(bool alsoListening) noexcept {
  closeHandle(connectedSocket);
  if (alsoListening) closeHandle(listeningSocket);
}

std::uint32_t simple_socket::receive_header(bool useEndTime, std::uint32_t endTime) {
  if (useEndTime) {
    try {
      wait_readable(endTime);
    } catch (const simple_socket_timeout_error&) {
      throw simple_socket_timeout_error("simple_socket: Timed out waiting for header packet to arrive.");
    }
  }
  Header header{};
  try {
    receive_data(header.data(), header.size(), useEndTime, endTime);
  } catch (const simple_socket_disconnect_error&) {
    throw simple_socket_disconnect_error("simple_socket::receive: socket was disconnected while reading header.");
  }
  return decodeLength(header);
}

void simple_socket::receive_data(char* buffer, std::size_t count, bool useEndTime, std::uint32_t endTime) {
  std::size_t received = 0;
  while (received < count) {
    const std::size_t wanted = std::min(count - received, kReadChunk);
    const std::ptrdiff_t read = useEndTime ? receive_until(buffer + received, wanted, endTime)
                                           : platform::receiveBytes(connectedSocket, buffer + received, wanted);
    if (read < 0) {
      const std::string errorNumber = lastErrorNumber();  // closing may overwrite it
      close(true);
      throw simple_socket_error("recv: socket error trying to receive data: WSAError code " + errorNumber);
    }
    if (read == 0) {
      close(true);
      throw simple_socket_disconnect_error("simple_socket::receive: socket was disconnected while reading data.");
    }
    received += static_cast<std::size_t>(read);
  }
}

// A wait is a system call of its own, spared where the bytes can be had without.
std::ptrdiff_t simple_socket::receive_until(char* buffer, std::size_t count, std::uint32_t endTime) {
  if (const auto read = platform::receiveArrived(connectedSocket, buffer, count)) return *read;
  wait_readable(endTime);
  return platform::receiveBytes(connectedSocket, buffer, count);
}

void simple_socket::wait_readable(std::uint32_t endTime) {
  // Signed, so that an end time beyond the counter's wrap is still ahead and a missed one is negative.
  const auto remaining = static_cast<std::int32_t>(endTime - platform::clock().tickCount());
  const auto milliseconds = static_cast<std::uint32_t>(std::max(remaining, 0));
  switch (platform::clock().waitReadable(connectedSocket, milliseconds)) {
    case platform::WaitResult::readable:
      return;
    case platform::WaitResult::failed: {
      const std::string errorNumber = lastErrorNumber();
      throw simple_socket_error("select: Operation on socket failed: WSAError code " + errorNumber);
    }
    case platform::WaitResult::timedOut:
      throw simple_socket_timeout_error("simple_socket: Timed out waiting for data.");
  }
}

}  // namespace corvantis::win32
