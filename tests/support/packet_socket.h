// What the tests of the packet socket share.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "plugin/transport/simple_socket.h"
#include "support/fake_clock.h"
#include "support/scripted_peer.h"

namespace corvantis::win32 {

// With its inside open, to break it.
class OpenedSocket : public simple_socket {
 public:
  OpenedSocket() = default;
  explicit OpenedSocket(bool libraryStarted) : simple_socket(libraryStarted) {}

  platform::SocketHandle handle() const { return connectedSocket; }
  void pretendToListen(platform::SocketHandle socket) { listeningSocket = socket; }
  bool isListening() const { return listeningSocket != platform::kInvalidSocket; }
};

// Runs `work`, which must throw exactly an `Error` with this text.
template <class Error, class Work>
void expectError(Work&& work, const std::string& text) {
  try {
    work();
    ADD_FAILURE() << "nothing was thrown in place of: " << text;
  } catch (const std::exception& error) {
    EXPECT_EQ(typeid(error), typeid(Error)) << error.what();
    EXPECT_EQ(error.what(), text);
  }
}

class PacketSocket : public testing::Test {
 protected:
  void connect() {
    peer.start();
    socket.connect("127.0.0.1", peer.port(), 1);
  }
  template <class Error>
  void expectReceiveError(std::int32_t timeoutMs, const std::string& text) {
    expectError<Error>([&] { socket.receive(timeoutMs); }, text);
  }

  support::FakeClock clock;
  platform::ClockReplacement replacement{clock};
  support::ScriptedPeer peer;
  OpenedSocket socket;
};

}  // namespace corvantis::win32
