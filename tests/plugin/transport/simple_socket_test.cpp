#include "plugin/transport/simple_socket.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <utility>

#include "support/packet_socket.h"
#include "support/platform_kind.h"
#include "support/socket_errors.h"

namespace corvantis::win32 {
namespace {

using namespace std::string_literals;
using support::ScriptedPeer;

TEST(PacketSocketConstruction, FailsWithoutTheSocketLibrary) {
  expectError<simple_socket_error>([] { OpenedSocket{false}; }, "WSAStartup: failed");
}

TEST_F(PacketSocket, PutsTheLengthBeforeThePayload) {
  const std::string payloads[] = {"", "a\0\xFF"s, std::string(300, 'x')};
  const std::string lengths[] = {"\0\0\0\0"s, "\0\0\0\x03"s, "\0\0\x01\x2C"s};
  for (std::size_t i = 0; i < 3; ++i) peer.expectRaw(lengths[i] + payloads[i]).sendRaw(lengths[i] + payloads[i]);
  connect();
  for (const std::string& payload : payloads) {
    socket.send(payload);
    EXPECT_EQ(socket.receive(payload.empty() ? -1 : 120000), payload);
  }
  peer.finish();
}

TEST_F(PacketSocket, PutsAMessageTogetherFromPieces) {
  peer.sendRaw("\0\0"s).letTimePass(clock, 10).sendRaw("\0\x05"s + "ab").letTimePass(clock, 10).sendRaw("cde");
  connect();
  EXPECT_EQ(socket.receive(1000), "abcde");
  peer.finish();
}

TEST_F(PacketSocket, LimitsWhatItSends) {
  const std::string largest(99996, 'x');
  peer.expect(largest).expectEnd();
  connect();
  socket.send(largest);
  expectError<simple_socket_error>([&] { socket.send(largest + 'x'); },
                                   "simple_socket::send: Tried to send too much data at once.");
  EXPECT_TRUE(socket.isConnected());
  socket.close(false);
  peer.finish();
}

TEST_F(PacketSocket, LimitsWhatItReceivesAndStaysOpen) {
  const std::string largest(MAX_PACKET_SIZE, 'x');
  peer.send(largest).stallAfterHeader(100001).stallAfterHeader(0xFFFFFFFF).sendRaw("next").expect("still here");
  connect();
  EXPECT_EQ(socket.receive(120000), largest);
  expectReceiveError<simple_socket_error>(120000, "simple_socket::receive: Invalid packet size (given 100001)");
  expectReceiveError<simple_socket_error>(120000, "simple_socket::receive: Invalid packet size (given 4294967295)");
  // What follows is unread: it is taken for a header.
  expectReceiveError<simple_socket_error>(120000, "simple_socket::receive: Invalid packet size (given 1852143732)");
  EXPECT_TRUE(socket.isConnected());
  socket.send("still here");
  peer.finish();
}

TEST_F(PacketSocket, WorksConnectedOnlyAndConnectsOnce) {
  expectError<simple_socket_error>([&] { socket.send("x"); }, "simple_socket: send called while not connected.");
  expectReceiveError<simple_socket_error>(0, "simple_socket: receive while not connected.");
  EXPECT_FALSE(socket.isConnected());
  peer.expect("undisturbed");
  connect();
  expectError<simple_socket_error>([&] { socket.connect("127.0.0.1", 1, 1); },
                                   "simple_socket::connect: Already connected.");
  socket.send("undisturbed");
  peer.finish();
}

TEST_F(PacketSocket, DoesNotConnectWhileListeningAndClosesBoth) {
  const platform::SocketHandle listener = platform::openSocket(platform::SocketType::stream);
  socket.pretendToListen(listener);
  expectError<simple_socket_error>([&] { socket.connect("127.0.0.1", 1, 1); },
                                   "simple_socket::connect: Already listening for a connection.");
  socket.close(false);
  EXPECT_TRUE(socket.isListening());
  socket.close(true);
  EXPECT_FALSE(socket.isListening());
  char byte = 0;
  EXPECT_EQ(platform::receiveBytes(listener, &byte, 1), -1);
  EXPECT_EQ(platform::lastSocketError(), support::kNoSocket);
}

TEST_F(PacketSocket, TakesDottedAddressesOfSomebodyOnly) {
  for (const char* host : {"localhost", "", "127.0.0.256", "::1", "127.0.0.1 "})  // judged before the protocol
    expectError<simple_socket_error>([&] { socket.connect(host, 1, 7); },
                                     "simple_socket::connect: Invalid IP address specified, "s + host);
  for (const std::int32_t protocol : {0, 3, -1})
    expectError<simple_socket_error>([&] { socket.connect("127.0.0.1", 1, protocol); }, "socket: Invalid protocol id");
  // A port that was free a moment ago and has nobody listening now.
  const std::uint16_t port = ScriptedPeer().port();
  expectError<simple_socket_could_not_connect_error>(
      [&] { socket.connect("127.0.0.1", port, 1); },
      "connect: Failed to connect to server at port " + std::to_string(port));
  EXPECT_FALSE(socket.isConnected());
  socket.connect("127.0.0.1", port, 2);  // datagrams, where no stream would find anybody
  EXPECT_TRUE(socket.isConnected());
}

TEST_F(PacketSocket, PollsWithATimeOutOfZero) {
  peer.expect("ask").send("now");
  connect();
  expectReceiveError<simple_socket_timeout_error>(0, "simple_socket: Timed out waiting for header packet to arrive.");
  socket.send("ask");
  peer.awaitSteps();
  EXPECT_EQ(socket.receive(0), "now");
  EXPECT_THAT(clock.waits(), testing::Each(0U));
  peer.finish();
}

// Each leaves the connection open.
TEST_F(PacketSocket, TimesOutAtOneEndTimeForTheWholeMessage) {
  const std::string header = "simple_socket: Timed out waiting for header packet to arrive.";
  const std::string data = "simple_socket: Timed out waiting for data.";
  const struct {
    std::int32_t timeout;
    std::string text;
    std::function<void(ScriptedPeer&)> steps;
  } cases[] = {
      {120000, header, [&](auto& worker) { worker.letTimePass(clock, 119999).letTimePass(clock, 1); }},
      {1000, data, [&](auto& worker) { worker.sendRaw("\0\0"s).letTimePass(clock, 1000).sendRaw("\0"s); }},
      // 600 of 1000 ms are gone when the payload starts; another 600 are too many, though each wait alone is short.
      {1000, data,
       [&](auto& worker) {
         worker.letTimePass(clock, 600).stallAfterHeader(4).sendRaw("ab").letTimePass(clock, 399).letTimePass(clock, 1);
       }},
      // The header arrives late: the rest is only taken if it is there.
      {1000, data,
       [&](auto& worker) {
         worker.letTimePass(clock, 900).stallAfterHeader(4).then([&] { clock.awaitWaiter(), clock.advance(5000); });
       }},
  };
  for (const auto& c : cases) {
    ScriptedPeer worker;
    c.steps(worker);
    worker.expect("go on");
    worker.start();
    socket.connect("127.0.0.1", worker.port(), 1);
    const std::size_t waitsBefore = clock.waits().size();
    expectReceiveError<simple_socket_timeout_error>(c.timeout, c.text);
    EXPECT_EQ(clock.waits()[waitsBefore], static_cast<std::uint32_t>(c.timeout));
    EXPECT_LE(clock.waits().back(), static_cast<std::uint32_t>(c.timeout));
    EXPECT_TRUE(socket.isConnected());
    socket.send("go on");
    worker.finish();
    socket.close(true);
  }
}

TEST_F(PacketSocket, WaitsAcrossTheWrapOfTheTickCounter) {
  clock.setTickCount(0xFFFFFFFF - 400);
  peer.letTimePass(clock, 999).send("in time").expect("again").letTimePass(clock, 1000);
  connect();
  EXPECT_EQ(socket.receive(1000), "in time");
  EXPECT_EQ(clock.tickCount(), 598U);
  clock.setTickCount(0xFFFFFFFF - 400);
  socket.send("again");
  EXPECT_THROW(socket.receive(1000), simple_socket_timeout_error);
  EXPECT_THAT(clock.waits(), testing::Contains(1000U));
  EXPECT_THAT(clock.waits(), testing::Each(testing::Le(1000U)));
  peer.finish();
}

TEST_F(PacketSocket, NeverTimesOutWithANegativeTimeOut) {
  peer.expect("ask").then([this] { clock.advance(0x7FFFFFFF); }).send("at last");
  connect();
  socket.send("ask");
  EXPECT_EQ(socket.receive(-1), "at last");
  EXPECT_THAT(clock.waits(), testing::IsEmpty());
  peer.finish();
}

TEST_F(PacketSocket, NoticesAPeerThatCloses) {
  const std::string inHeader = "simple_socket::receive: socket was disconnected while reading header.";
  const std::string inData = "simple_socket::receive: socket was disconnected while reading data.";
  const std::pair<std::string, std::string> rows[] = {
      {"", inHeader}, {"\0\0\0"s, inHeader}, {"\0\0\0\x05"s, inData}, {"\0\0\0\x05"s + "abcd", inData}};
  for (const auto& [sent, text] : rows) {
    ScriptedPeer leaving;
    leaving.sendRaw(sent).close().expectEnd();
    leaving.start();
    socket.connect("127.0.0.1", leaving.port(), 1);
    expectReceiveError<simple_socket_disconnect_error>(120000, text);
    EXPECT_FALSE(socket.isConnected());
    leaving.finish();
  }
}

TEST_F(PacketSocket, ClosesAtAReadErrorButNotAtASendError) {
  peer.reset();
  connect();
  peer.awaitSteps();
  if (support::runsUnderWine()) {  // where a connection that is broken off looks like one that has ended
    EXPECT_THROW(socket.receive(120000), simple_socket_disconnect_error);
  } else {
    expectReceiveError<simple_socket_error>(120000, "recv: socket error trying to receive data: WSAError code " +
                                                        std::to_string(support::kConnectionReset));
  }
  EXPECT_FALSE(socket.isConnected());
  peer.finish();

  ScriptedPeer another;
  another.reset();
  another.start();
  socket.connect("127.0.0.1", another.port(), 1);
  another.awaitSteps();
  for (const auto error : {support::kConnectionReset, support::kBrokenConnection})  // and no signal
    expectError<simple_socket_error>([&] { socket.send("x"); },
                                     "send: error trying to send data: WSAError code " + std::to_string(error));
  EXPECT_TRUE(socket.isConnected());
  another.finish();
}

// Takes the socket away before a wait, or after a wait that has ended well.
class BreakingClock final : public platform::Clock {
 public:
  BreakingClock(platform::Clock& clock, bool breaksFirst) : clock_(clock), breaksFirst_(breaksFirst) {}
  std::uint32_t tickCount() override { return clock_.tickCount(); }
  void sleep(std::uint32_t milliseconds) override { clock_.sleep(milliseconds); }
  platform::WaitResult waitReadable(platform::SocketHandle socket, std::uint32_t milliseconds) override {
    if (breaksFirst_) platform::closeSocket(socket);
    const platform::WaitResult result = clock_.waitReadable(socket, milliseconds);
    if (result == platform::WaitResult::readable) platform::closeSocket(socket);
    return result;
  }

 private:
  platform::Clock& clock_;
  bool breaksFirst_;
};

// The wait for the message, and the one inside it.
TEST_F(PacketSocket, ReportsAWaitThatFailsAndStaysOpen) {
  for (const bool breaksFirst : {true, false}) {
    ScriptedPeer worker;
    worker.send("data");
    worker.start();
    socket.connect("127.0.0.1", worker.port(), 1);
    worker.awaitSteps();  // the peer is to take no descriptor any more
    BreakingClock breaking(clock, breaksFirst);
    const platform::ClockReplacement inForce(breaking);
    expectReceiveError<simple_socket_error>(
        120000, "select: Operation on socket failed: WSAError code " + std::to_string(support::kNoSocket));
    EXPECT_TRUE(socket.isConnected());
    socket.close(true);
    worker.finish();
  }
}

}  // namespace
}  // namespace corvantis::win32
