#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "platform/clock.h"
#include "platform/socket.h"
#include "support/platform_kind.h"
#include "support/socket_errors.h"
#include "support/socket_pair.h"

namespace platform {
namespace {

using support::SocketPair;

TEST(Socket, AddressesAreDottedNumbersOnly) {
  std::uint32_t address = 0;
  ASSERT_TRUE(parseAddress("127.0.0.1", address));
  std::array<unsigned char, 4> bytes{};
  std::memcpy(bytes.data(), &address, bytes.size());
  EXPECT_EQ(bytes, (std::array<unsigned char, 4>{127, 0, 0, 1}));
  for (const std::string text : {"localhost", "", "127.0.0", "127.0.0.256", "127.0.0.1 ", "::1"}) {
    EXPECT_FALSE(parseAddress(text, address)) << text;
  }
  EXPECT_FALSE(parseAddress(std::string("127.0.0.1\0x", 11), address));
}

// What a socket of its own brings about, as the number that it leaves.
TEST(Socket, FailuresHaveTheSystemsOwnNumbers) {
  startSocketLibrary();
  std::uint32_t loopback = 0;
  parseAddress("127.0.0.1", loopback);
  const SocketHandle socket = openSocket(SocketType::stream);
  ASSERT_NE(socket, kInvalidSocket);
  EXPECT_FALSE(connectSocket(socket, loopback, 1));
  EXPECT_EQ(lastSocketError(), support::kConnectionRefused);
  closeSocket(socket);
  char byte = 0;
  EXPECT_EQ(receiveBytes(socket, &byte, 1), -1);
  EXPECT_EQ(lastSocketError(), support::kNoSocket);
  EXPECT_EQ(clock().waitReadable(socket, 1000), WaitResult::failed);
  EXPECT_EQ(lastSocketError(), support::kNoSocket);
  stopSocketLibrary();
}

TEST(Socket, SendsIntoABrokenConnectionFailWithoutASignal) {
  SocketPair pair;
  pair.reset();
  char byte = 0;
  EXPECT_LE(receiveBytes(pair.ours(), &byte, 1), 0);  // the end is known from here on
  EXPECT_EQ(sendBytes(pair.ours(), "x", 1), -1);
  EXPECT_EQ(lastSocketError(), support::kBrokenConnection);
}

TEST(Socket, TakesWhatHasArrivedWithoutWaiting) {
  SocketPair pair;
  char byte = 0;
  EXPECT_EQ(receiveArrived(pair.ours(), &byte, 1), std::nullopt);
  pair.send("x");
  ASSERT_EQ(clock().waitReadable(pair.ours(), 60000), WaitResult::readable);
  if (support::kIsWindows) return;  // where nothing is looked at
  EXPECT_EQ(receiveArrived(pair.ours(), &byte, 1), 1);
  EXPECT_EQ(byte, 'x');
  pair.close();
  ASSERT_EQ(clock().waitReadable(pair.ours(), 60000), WaitResult::readable);
  EXPECT_EQ(receiveArrived(pair.ours(), &byte, 1), 0);
}

TEST(SystemClock, WaitsForDataAndForAClosedPeer) {
  SocketPair pair;
  EXPECT_EQ(clock().waitReadable(pair.ours(), 0), WaitResult::timedOut);
  EXPECT_EQ(clock().waitReadable(pair.ours(), 2), WaitResult::timedOut);
  pair.send("x");
  EXPECT_EQ(clock().waitReadable(pair.ours(), 4000000000U), WaitResult::readable);
  char byte = 0;
  EXPECT_EQ(receiveBytes(pair.ours(), &byte, 1), 1);
  pair.close();
  EXPECT_EQ(clock().waitReadable(pair.ours(), 4000000000U), WaitResult::readable);
  EXPECT_EQ(receiveBytes(pair.ours(), &byte, 1), 0);
}

TEST(SystemClock, TicksGoOnAndWrapAsDifferences) {
  const std::uint32_t before = clock().tickCount();
  clock().sleep(0);
  EXPECT_LT(clock().tickCount() - before, 60000U);
}

}  // namespace
}  // namespace platform
