// Where a host's plug-in comes in: a free port of 127.0.0.1, open until somebody brings the token. Whoever else comes
// is sent away, and costs nothing but that.
#pragma once

#include <array>
#include <boost/asio/ip/tcp.hpp>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "protocol/framing.h"
#include "worker/host/event_loop.h"

namespace worker {

class Door {
 public:
  // boost::system::system_error when there is no port to be had.
  Door(EventLoop& loop, std::string token);

  std::uint16_t port() const { return acceptor_.local_endpoint().port(); }
  bool hasCome() const { return plugin_.has_value(); }
  // Why nobody can come any more; empty while somebody can.
  const std::string& failure() const { return failure_; }
  // The plug-in's connection, its token read. Closes the door.
  boost::asio::ip::tcp::socket take();
  // How many came with something else; who waits silently is not among them.
  std::size_t strangers() const { return strangers_; }

 private:
  // Its message must be the token: what is longer or shorter need not be read.
  struct Guest {
    explicit Guest(boost::asio::ip::tcp::socket s, std::size_t size) : socket(std::move(s)), message(size) {}
    boost::asio::ip::tcp::socket socket;
    std::array<unsigned char, protocol::kHeaderSize> header{};
    std::vector<unsigned char> message;
  };
  using GuestPointer = std::shared_ptr<Guest>;  // a reading under way keeps its buffers

  void accept();
  void makeRoom();
  void readHeader(const GuestPointer& guest);
  void readToken(const GuestPointer& guest);
  void sendAway(const GuestPointer& guest);

  EventLoop& loop_;
  boost::asio::ip::tcp::acceptor acceptor_;
  std::string token_;
  std::list<GuestPointer> guests_;  // the longest waiting first
  std::optional<boost::asio::ip::tcp::socket> plugin_;
  std::string failure_;
  std::size_t strangers_ = 0;
};

}  // namespace worker
