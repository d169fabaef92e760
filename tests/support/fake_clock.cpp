#include "support/fake_clock.h"

#include <algorithm>

namespace support {

using platform::WaitResult;

// How often a blocked wait looks at the fake time, in real milliseconds. No outcome depends on it.
constexpr std::uint32_t kLookInterval = 1;

class FakeClock::Waiting {
 public:
  Waiting(FakeClock& clock, std::uint64_t end) : clock_(clock) {
    const std::lock_guard lock(clock_.mutex_);
    end_ = clock_.ends_.insert(end);
    clock_.waiterArrived_.notify_all();
  }
  ~Waiting() {
    const std::lock_guard lock(clock_.mutex_);
    clock_.ends_.erase(end_);
  }
  Waiting(const Waiting&) = delete;
  Waiting& operator=(const Waiting&) = delete;

 private:
  FakeClock& clock_;
  std::multiset<std::uint64_t>::iterator end_;
};

FakeClock::FakeClock(std::uint32_t tickCount) : system_(platform::clock()), origin_(tickCount) {}

std::uint32_t FakeClock::tickCount() {
  const std::lock_guard lock(mutex_);
  return origin_ + static_cast<std::uint32_t>(elapsed_);
}

void FakeClock::sleep(std::uint32_t milliseconds) {
  const std::lock_guard lock(mutex_);
  sleeps_.push_back(milliseconds);
  elapsed_ += milliseconds;
}

WaitResult FakeClock::waitReadable(platform::SocketHandle socket, std::uint32_t milliseconds) {
  std::uint64_t end = 0;
  {
    const std::lock_guard lock(mutex_);
    waits_.push_back(milliseconds);
    end = elapsed_ + milliseconds;
  }
  WaitResult result = system_.waitReadable(socket, 0);
  if (result != WaitResult::timedOut || isOver(end)) return result;
  const Waiting waiting(*this, end);
  do {
    result = system_.waitReadable(socket, kLookInterval);
  } while (result == WaitResult::timedOut && !isOver(end));
  // What came before the clock was moved came in time, although we may not have looked since.
  return result == WaitResult::timedOut ? system_.waitReadable(socket, 0) : result;
}

bool FakeClock::isOver(std::uint64_t end) {
  const std::lock_guard lock(mutex_);
  if (passesSilentWaits_) elapsed_ = std::max(elapsed_, end);
  return elapsed_ >= end;
}

void FakeClock::setTickCount(std::uint32_t tickCount) {
  const std::lock_guard lock(mutex_);
  origin_ = tickCount - static_cast<std::uint32_t>(elapsed_);
}

void FakeClock::advance(std::uint32_t milliseconds) {
  const std::lock_guard lock(mutex_);
  elapsed_ += milliseconds;
}

void FakeClock::passSilentWaits(bool pass) {
  const std::lock_guard lock(mutex_);
  passesSilentWaits_ = pass;
}

bool FakeClock::awaitWaiter(std::chrono::seconds limit) {
  std::unique_lock lock(mutex_);
  return waiterArrived_.wait_for(lock, limit, [this] { return !ends_.empty() && *ends_.rbegin() > elapsed_; });
}

std::vector<std::uint32_t> FakeClock::sleeps() const {
  const std::lock_guard lock(mutex_);
  return sleeps_;
}

std::vector<std::uint32_t> FakeClock::waits() const {
  const std::lock_guard lock(mutex_);
  return waits_;
}

}  // namespace support
