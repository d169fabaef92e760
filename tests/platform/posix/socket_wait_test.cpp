// Waits that meet what only this system has: socket numbers beyond select() and signals.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>

#include "platform/clock.h"
#include "support/socket_pair.h"

namespace platform {
namespace {

using support::SocketPair;

// select() could not watch these.
TEST(SystemClock, WaitsOnHighSocketNumbers) {
  constexpr rlim_t kHigh = FD_SETSIZE + 100;
  rlimit limit{};
  ::getrlimit(RLIMIT_NOFILE, &limit);
  if (limit.rlim_max <= kHigh) GTEST_SKIP() << "the system allows no so many files";
  const rlimit raised{kHigh + 1, limit.rlim_max};
  if (limit.rlim_cur <= kHigh) ::setrlimit(RLIMIT_NOFILE, &raised);
  SocketPair pair;
  const int high = ::dup2(static_cast<int>(pair.ours()), static_cast<int>(kHigh));
  ASSERT_GE(high, FD_SETSIZE);
  EXPECT_EQ(clock().waitReadable(static_cast<SocketHandle>(high), 1), WaitResult::timedOut);
  pair.send("x");
  EXPECT_EQ(clock().waitReadable(static_cast<SocketHandle>(high), 1000), WaitResult::readable);
  ::close(high);
  ::setrlimit(RLIMIT_NOFILE, &limit);
}

TEST(SystemClock, InterruptedWaitGoesOn) {
  struct sigaction ignoring {};
  ignoring.sa_handler = [](int) {};
  struct sigaction before {};
  ::sigaction(SIGUSR1, &ignoring, &before);
  SocketPair pair;
  const pthread_t waiter = ::pthread_self();
  std::atomic<bool> done = false;
  std::thread interrupter([&] {
    for (int i = 0; i < 100; ++i) ::pthread_kill(waiter, SIGUSR1);
    pair.send("x");
    while (!done) ::pthread_kill(waiter, SIGUSR1);
  });
  EXPECT_EQ(clock().waitReadable(pair.ours(), 60000), WaitResult::readable);
  char byte = 0;
  EXPECT_EQ(receiveBytes(pair.ours(), &byte, 1), 1);
  done = true;
  interrupter.join();
  ::sigaction(SIGUSR1, &before, nullptr);
}

}  // namespace
}  // namespace platform
