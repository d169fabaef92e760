#include "fuzz/loopback_peer.h"

#include <array>

namespace fuzz {
namespace {

using boost::asio::ip::tcp;
constexpr std::size_t kHeaderSize = 4;

std::size_t lengthIn(const std::string& bytes) {
  std::size_t length = 0;
  for (std::size_t i = 0; i < kHeaderSize; ++i) length = length << 8 | static_cast<unsigned char>(bytes[i]);
  return length;
}

}  // namespace

LoopbackPeer::LoopbackPeer()
    : acceptor_(context_, tcp::endpoint(boost::asio::ip::address_v4::loopback(), 0)), connection_(context_) {}

void LoopbackPeer::connect(corvantis::win32::simple_socket& socket) {
  socket.close(true);
  connection_.close();
  socket.connect("127.0.0.1", acceptor_.local_endpoint().port(), 1);
  connection_ = acceptor_.accept();
  connection_.set_option(boost::asio::socket_base::linger(true, 0));
  unread_.clear();
}

void LoopbackPeer::sendRaw(std::string_view bytes) {
  boost::asio::write(connection_, boost::asio::buffer(bytes.data(), bytes.size()));
}

void LoopbackPeer::send(std::string_view payload) {
  const auto size = static_cast<std::uint32_t>(payload.size());
  sendRaw(std::string{static_cast<char>(size >> 24), static_cast<char>(size >> 16), static_cast<char>(size >> 8),
                      static_cast<char>(size)} +
          std::string(payload));
}

bool LoopbackPeer::readMore() {
  std::array<char, 4096> bytes{};
  boost::system::error_code failure;
  const std::size_t count = connection_.read_some(boost::asio::buffer(bytes), failure);
  unread_.append(bytes.data(), count);
  return !failure;
}

bool LoopbackPeer::nextMessage(std::string& message) {
  if (unread_.size() < kHeaderSize || unread_.size() - kHeaderSize < lengthIn(unread_)) return false;
  const std::size_t length = lengthIn(unread_);
  message = unread_.substr(kHeaderSize, length);
  unread_.erase(0, kHeaderSize + length);
  return true;
}

std::vector<std::string> LoopbackPeer::receivedFrom(corvantis::win32::simple_socket& socket) {
  // Its last word, behind which nothing of the past can come.
  const std::string lastWord = "the fuzzer's last word";
  std::vector<std::string> messages;
  if (!socket.isConnected()) return messages;
  try {
    socket.send(lastWord);
  } catch (const corvantis::win32::simple_socket_error&) {
    return messages;
  }
  for (std::string message;;) {
    while (nextMessage(message)) {
      if (message == lastWord) return messages;
      messages.push_back(message);
    }
    if (!readMore()) return messages;
  }
}

}  // namespace fuzz
