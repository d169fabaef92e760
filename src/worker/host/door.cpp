#include "worker/host/door.h"

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/asio/read.hpp>
#include <utility>

namespace worker {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

// The longest waiting goes when more come: a plug-in says its token at once.
constexpr std::size_t kMostGuests = 400;

std::uint32_t sizeIn(const std::array<unsigned char, protocol::kHeaderSize>& header) {
  return (std::uint32_t{header[0]} << 24) | (std::uint32_t{header[1]} << 16) | (std::uint32_t{header[2]} << 8) |
         header[3];
}

// Takes as long whatever differs, so that nobody learns the token piece by piece.
bool isSame(const std::vector<unsigned char>& message, const std::string& token) {
  unsigned difference = 0;
  for (std::size_t i = 0; i < token.size(); ++i) difference |= message[i] ^ static_cast<unsigned char>(token[i]);
  return difference == 0;
}

}  // namespace

Door::Door(EventLoop& loop, std::string token)
    : loop_(loop),
      acceptor_(loop.context(), tcp::endpoint(asio::ip::address_v4::loopback(), 0)),
      token_(std::move(token)) {
  accept();
}

tcp::socket Door::take() {
  boost::system::error_code ignored;
  acceptor_.close(ignored);
  guests_.clear();
  return std::move(*plugin_);
}

void Door::accept() {
  acceptor_.async_accept([this](const boost::system::error_code& error, tcp::socket socket) {
    if (error == asio::error::operation_aborted) return;
    if (error == asio::error::no_descriptors && guests_.empty()) {
      failure_ = error.message();
      return;
    }
    if (error == asio::error::no_descriptors) makeRoom();
    if (!error) {
      guests_.push_back(std::make_shared<Guest>(std::move(socket), token_.size()));
      readHeader(guests_.back());
      if (guests_.size() > kMostGuests) makeRoom();
    }
    accept();
  });
}

void Door::makeRoom() { sendAway(guests_.front()); }

void Door::readHeader(const GuestPointer& guest) {
  asio::async_read(guest->socket, asio::buffer(guest->header),
                   [this, guest](const boost::system::error_code& error, std::size_t) {
                     if (error || sizeIn(guest->header) != token_.size()) return sendAway(guest);
                     readToken(guest);
                   });
}

void Door::readToken(const GuestPointer& guest) {
  asio::async_read(guest->socket, asio::buffer(guest->message),
                   [this, guest](const boost::system::error_code& error, std::size_t) {
                     if (error || plugin_ || !isSame(guest->message, token_)) return sendAway(guest);
                     plugin_ = std::move(guest->socket);
                   });
}

void Door::sendAway(const GuestPointer& guest) {
  const auto at = std::find(guests_.begin(), guests_.end(), guest);
  if (at == guests_.end()) return;  // it was sent away before, or the door is closed
  const GuestPointer kept = std::move(*at);
  guests_.erase(at);
  ++strangers_;
  boost::system::error_code ignored;
  kept->socket.close(ignored);
}

}  // namespace worker
