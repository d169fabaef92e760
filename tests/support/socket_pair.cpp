#include "support/socket_pair.h"

#include <utility>  // which the next one needs and forgets

#include <boost/asio.hpp>
#include <stdexcept>

namespace support {

namespace asio = boost::asio;
using asio::ip::tcp;

struct SocketPair::FarEnd {
  asio::io_context io;
  tcp::acceptor acceptor{io, tcp::endpoint(asio::ip::address_v4::loopback(), 0)};
  tcp::socket socket{io};
};

SocketPair::SocketPair() {
  platform::startSocketLibrary();
  far_ = std::make_unique<FarEnd>();
  ours_ = platform::openSocket(platform::SocketType::stream);
  std::uint32_t loopback = 0;
  platform::parseAddress("127.0.0.1", loopback);
  if (!platform::connectSocket(ours_, loopback, far_->acceptor.local_endpoint().port())) {
    throw std::runtime_error("no loopback connection: error " + std::to_string(platform::lastSocketError()));
  }
  far_->acceptor.accept(far_->socket);
}

SocketPair::~SocketPair() {
  platform::closeSocket(ours_);
  far_.reset();
  platform::stopSocketLibrary();
}

void SocketPair::send(const std::string& bytes) { asio::write(far_->socket, asio::buffer(bytes)); }

void SocketPair::close() { far_->socket.close(); }

void SocketPair::reset() {
  far_->socket.set_option(asio::socket_base::linger(true, 0));
  far_->socket.close();
}

}  // namespace support
