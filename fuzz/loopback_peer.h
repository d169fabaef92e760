// The worker's end of a connection, without a thread: what it says is said before the plug-in listens, and what the
// plug-in says is read afterwards.
#pragma once

#include <boost/asio.hpp>

#include <string>
#include <string_view>
#include <vector>

#include "plugin/transport/simple_socket.h"

namespace fuzz {

class LoopbackPeer {
 public:
  LoopbackPeer();
  // Breaks off the connection, if there is one, and connects `socket` afresh. No port is left waiting.
  void connect(corvantis::win32::simple_socket& socket);

  void sendRaw(std::string_view bytes);
  void send(std::string_view payload);
  // The messages that `socket` has sent since the last call, all of them: what a system holds back a moment is waited
  // for. Empty when the connection is gone.
  std::vector<std::string> receivedFrom(corvantis::win32::simple_socket& socket);

 private:
  bool readMore();
  // Takes the next whole message off what was read.
  bool nextMessage(std::string& message);

  boost::asio::io_context context_;
  boost::asio::ip::tcp::acceptor acceptor_;
  boost::asio::ip::tcp::socket connection_;
  std::string unread_;
};

}  // namespace fuzz
