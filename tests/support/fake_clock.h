// A clock that a test moves by hand. Waiting on it takes no real time and depends on none.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <set>
#include <vector>

#include "platform/clock.h"

namespace support {

// Put in force with platform::ClockReplacement. Every member may be called from any thread.
class FakeClock final : public platform::Clock {
 public:
  explicit FakeClock(std::uint32_t tickCount = 1000);

  // Wraps as the real one does.
  std::uint32_t tickCount() override;
  // Moves the clock on by itself and returns at once.
  void sleep(std::uint32_t milliseconds) override;
  // Blocks until the real socket is readable or another thread has moved the clock to the end of the wait; a socket
  // that is readable wins. A wait of 0 polls.
  platform::WaitResult waitReadable(platform::SocketHandle socket, std::uint32_t milliseconds) override;

  // What tickCount() answers from now on. Waits under way keep what they have left.
  void setTickCount(std::uint32_t tickCount);
  void advance(std::uint32_t milliseconds);

  // From now on a wait whose socket is not readable at once moves the clock to its own end and times out. For tests
  // without a second thread: only where the peer has said all that it will say.
  void passSilentWaits(bool pass = true);

  // Blocks until a thread is inside waitReadable with time left, so that an advance() that follows is sure to meet it.
  // False when nobody came within `limit` of real time, which only keeps a failing test from hanging.
  bool awaitWaiter(std::chrono::seconds limit = std::chrono::seconds(20));

  std::vector<std::uint32_t> sleeps() const;
  // The times asked for by waitReadable.
  std::vector<std::uint32_t> waits() const;

 private:
  class Waiting;

  // The end of the wait has come, or is made to come.
  bool isOver(std::uint64_t end);

  platform::Clock& system_;
  mutable std::mutex mutex_;
  std::condition_variable waiterArrived_;
  std::uint32_t origin_;
  std::uint64_t elapsed_ = 0;
  std::multiset<std::uint64_t> ends_;  // of the waits under way
  bool passesSilentWaits_ = false;
  std::vector<std::uint32_t> sleeps_;
  std::vector<std::uint32_t> waits_;
};

}  // namespace support
