#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <thread>

#include "platform/system_layers.h"

namespace platform {
namespace {

using Steady = std::chrono::steady_clock;

// poll() counts in int milliseconds: longer waits are cut into slices. Rounded up, so that a wait never ends early.
int pollSlice(Steady::duration remaining) {
  const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(remaining).count();
  return static_cast<int>(std::clamp<std::int64_t>(milliseconds, 0, INT_MAX));
}

class SystemClock final : public Clock {
 public:
  std::uint32_t tickCount() override {
    const auto sinceStart = std::chrono::duration_cast<std::chrono::milliseconds>(Steady::now().time_since_epoch());
    return static_cast<std::uint32_t>(sinceStart.count());
  }

  // The standard library resumes an interrupted sleep itself.
  void sleep(std::uint32_t milliseconds) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  }

  WaitResult waitReadable(SocketHandle socket, std::uint32_t milliseconds) override {
    Steady::duration remaining = std::chrono::milliseconds(milliseconds);
    const auto end = Steady::now() + remaining;
    for (;;) {
      pollfd watched{static_cast<int>(socket), POLLIN, 0};
      const int ready = ::poll(&watched, 1, pollSlice(remaining));
      if (ready > 0) return classify(watched);
      if (ready < 0 && errno != EINTR) return WaitResult::failed;
      remaining = end - Steady::now();
      if (ready == 0 && remaining <= Steady::duration::zero()) return WaitResult::timedOut;
    }
  }

 private:
  // poll() answers a closed descriptor with an event, not with an error.
  static WaitResult classify(const pollfd& watched) {
    if ((watched.revents & POLLNVAL) == 0) return WaitResult::readable;
    errno = EBADF;
    return WaitResult::failed;
  }
};

}  // namespace

Clock& systemClock() {
  static SystemClock instance;
  return instance;
}

}  // namespace platform
