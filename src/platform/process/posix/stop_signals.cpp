#include "platform/process/stop_signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace platform {
namespace {

struct Caught {
  int signal;
  Stop means;
};
constexpr std::array kCaught{Caught{SIGINT, Stop::interrupt}, Caught{SIGTERM, Stop::terminate},
                             Caught{SIGHUP, Stop::hangUp}};

// What a handler may touch.
volatile std::sig_atomic_t first = 0;
volatile std::sig_atomic_t count = 0;
int wakeUp[2] = {-1, -1};

std::array<struct sigaction, kCaught.size()> previous;

void note(int signal) {
  const int error = errno;
  if (count == 0) first = signal;
  count = count + 1;
  (void)!::write(wakeUp[1], "!", 1);
  errno = error;
}

}  // namespace

StopSignals::StopSignals() {
  first = 0;
  count = 0;
  if (::pipe2(wakeUp, O_CLOEXEC | O_NONBLOCK) != 0) throw std::system_error(errno, std::generic_category());
  for (std::size_t i = 0; i < kCaught.size(); ++i) {
    ::sigaction(kCaught[i].signal, nullptr, &previous[i]);
    if (previous[i].sa_handler == SIG_IGN) continue;
    struct sigaction action {};
    action.sa_handler = note;
    action.sa_flags = SA_RESTART;
    ::sigaction(kCaught[i].signal, &action, nullptr);
  }
}

StopSignals::~StopSignals() {
  for (std::size_t i = 0; i < kCaught.size(); ++i) ::sigaction(kCaught[i].signal, &previous[i], nullptr);
  for (int& end : wakeUp) {
    ::close(end);
    end = -1;
  }
}

Stop StopSignals::asked() const {
  for (const Caught& caught : kCaught)
    if (first == caught.signal) return caught.means;
  return Stop::none;
}

bool StopSignals::insists() const { return count > 1; }

int StopSignals::handle() const { return wakeUp[0]; }

}  // namespace platform
