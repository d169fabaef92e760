#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/clock.h"
#include "platform/socket.h"
#include "support/fake_clock.h"

namespace platform {
namespace {

// Two connected sockets.
class Pair {
 public:
  Pair() {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) throw std::runtime_error("socketpair");
    ours = static_cast<SocketHandle>(ends[0]);
    theirs = static_cast<SocketHandle>(ends[1]);
  }
  ~Pair() {
    closeSocket(ours);
    closeSocket(theirs);
  }
  Pair(const Pair&) = delete;
  Pair& operator=(const Pair&) = delete;

  SocketHandle ours = kInvalidSocket;
  SocketHandle theirs = kInvalidSocket;
};

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

TEST(Socket, RefusedConnectionAndBrokenSendsHaveTheirErrorNumbers) {
  std::uint32_t loopback = 0;
  parseAddress("127.0.0.1", loopback);
  const SocketHandle socket = openSocket(SocketType::stream);
  ASSERT_NE(socket, kInvalidSocket);
  EXPECT_FALSE(connectSocket(socket, loopback, 1));
  EXPECT_EQ(lastSocketError(), ECONNREFUSED);
  closeSocket(socket);
  EXPECT_EQ(receiveBytes(socket, nullptr, 0), -1);
  EXPECT_EQ(lastSocketError(), EBADF);

  Pair pair;
  ::shutdown(static_cast<int>(pair.theirs), SHUT_RDWR);
  EXPECT_EQ(sendBytes(pair.ours, "x", 1), -1);  // a signal would end the program here
  EXPECT_EQ(lastSocketError(), EPIPE);
}

TEST(SystemClock, WaitsForDataAndForAClosedPeer) {
  Pair pair;
  EXPECT_EQ(clock().waitReadable(pair.ours, 0), WaitResult::timedOut);
  EXPECT_EQ(clock().waitReadable(pair.ours, 2), WaitResult::timedOut);
  sendBytes(pair.theirs, "x", 1);
  EXPECT_EQ(clock().waitReadable(pair.ours, 4000000000U), WaitResult::readable);
  char byte = 0;
  EXPECT_EQ(receiveBytes(pair.ours, &byte, 1), 1);
  ::shutdown(static_cast<int>(pair.theirs), SHUT_RDWR);
  EXPECT_EQ(clock().waitReadable(pair.ours, 4000000000U), WaitResult::readable);
  EXPECT_EQ(receiveBytes(pair.ours, &byte, 1), 0);
}

TEST(SystemClock, WaitOnAClosedSocketFails) {
  SocketHandle closed = kInvalidSocket;
  {
    const Pair pair;
    closed = pair.ours;
  }
  EXPECT_EQ(clock().waitReadable(closed, 1000), WaitResult::failed);
  EXPECT_EQ(lastSocketError(), EBADF);
}

// select() could not watch these.
TEST(SystemClock, WaitsOnHighSocketNumbers) {
  constexpr rlim_t kHigh = FD_SETSIZE + 100;
  rlimit limit{};
  ::getrlimit(RLIMIT_NOFILE, &limit);
  if (limit.rlim_max <= kHigh) GTEST_SKIP() << "the system allows no so many files";
  const rlimit raised{kHigh + 1, limit.rlim_max};
  if (limit.rlim_cur <= kHigh) ::setrlimit(RLIMIT_NOFILE, &raised);
  Pair pair;
  const int high = ::dup2(static_cast<int>(pair.ours), static_cast<int>(kHigh));
  ASSERT_GE(high, FD_SETSIZE);
  EXPECT_EQ(clock().waitReadable(static_cast<SocketHandle>(high), 1), WaitResult::timedOut);
  sendBytes(pair.theirs, "x", 1);
  EXPECT_EQ(clock().waitReadable(static_cast<SocketHandle>(high), 1000), WaitResult::readable);
  ::close(high);
  ::setrlimit(RLIMIT_NOFILE, &limit);
}

TEST(SystemClock, InterruptedWaitGoesOn) {
  struct sigaction ignoring {};
  ignoring.sa_handler = [](int) {};
  struct sigaction before {};
  ::sigaction(SIGUSR1, &ignoring, &before);
  Pair pair;
  const pthread_t waiter = ::pthread_self();
  std::atomic<bool> done = false;
  std::thread interrupter([&] {
    for (int i = 0; i < 100; ++i) ::pthread_kill(waiter, SIGUSR1);
    sendBytes(pair.theirs, "x", 1);
    while (!done) ::pthread_kill(waiter, SIGUSR1);
  });
  EXPECT_EQ(clock().waitReadable(pair.ours, 60000), WaitResult::readable);
  char byte = 0;
  EXPECT_EQ(receiveBytes(pair.ours, &byte, 1), 1);
  done = true;
  interrupter.join();
  ::sigaction(SIGUSR1, &before, nullptr);
}

TEST(FakeClock, CountsSleepsAndWraps) {
  support::FakeClock fake(0xFFFFFF00);
  const ClockReplacement replacement(fake);
  EXPECT_EQ(clock().tickCount(), 0xFFFFFF00);
  clock().sleep(0x100);
  EXPECT_EQ(clock().tickCount(), 0U);
  fake.advance(5);
  EXPECT_EQ(clock().tickCount(), 5U);
  fake.setTickCount(70);
  EXPECT_EQ(clock().tickCount(), 70U);
  EXPECT_EQ(fake.sleeps(), std::vector<std::uint32_t>{0x100});
}

TEST(FakeClock, WaitEndsWhenTheClockIsMovedToItsEnd) {
  Pair pair;
  support::FakeClock fake(0xFFFFFFFF);
  WaitResult result = WaitResult::failed;
  std::thread waiter([&] { result = fake.waitReadable(pair.ours, 120000); });
  fake.awaitWaiter();
  fake.advance(119999);
  fake.awaitWaiter();  // not yet
  fake.advance(1);
  waiter.join();
  EXPECT_EQ(result, WaitResult::timedOut);
  EXPECT_EQ(fake.waits(), std::vector<std::uint32_t>{120000});
}

TEST(FakeClock, WaitEndsWhenTheSocketIsReadable) {
  Pair pair;
  support::FakeClock fake;
  WaitResult result = WaitResult::failed;
  std::thread waiter([&] { result = fake.waitReadable(pair.ours, 120000); });
  fake.awaitWaiter();
  sendBytes(pair.theirs, "x", 1);
  waiter.join();
  EXPECT_EQ(result, WaitResult::readable);
  EXPECT_EQ(fake.tickCount(), 1000U);
  EXPECT_EQ(fake.waitReadable(pair.ours, 0), WaitResult::readable);
}

TEST(FakeClock, SilentWaitsPassAtOnceWhenAsked) {
  Pair pair;
  support::FakeClock fake(0);
  fake.passSilentWaits();
  EXPECT_EQ(fake.waitReadable(pair.ours, 120000), WaitResult::timedOut);
  EXPECT_EQ(fake.tickCount(), 120000U);
}

}  // namespace
}  // namespace platform
