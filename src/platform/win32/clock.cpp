#include <winsock2.h>
// After winsock2.h, as Windows wants it.
#include <windows.h>

#include "platform/system_layers.h"

namespace platform {
namespace {

class SystemClock final : public Clock {
 public:
  std::uint32_t tickCount() override { return ::GetTickCount(); }

  void sleep(std::uint32_t milliseconds) override { ::Sleep(milliseconds); }

  // No signal interrupts a wait here.
  WaitResult waitReadable(SocketHandle socket, std::uint32_t milliseconds) override {
    fd_set watched{};
    watched.fd_count = 1;
    watched.fd_array[0] = socket;
    timeval limit{static_cast<long>(milliseconds / 1000), static_cast<long>(milliseconds % 1000 * 1000)};
    const int ready = ::select(0, &watched, nullptr, nullptr, &limit);
    if (ready == SOCKET_ERROR) return WaitResult::failed;
    return ready > 0 ? WaitResult::readable : WaitResult::timedOut;
  }
};

}  // namespace

Clock& systemClock() {
  static SystemClock instance;
  return instance;
}

}  // namespace platform
