#include "platform/posix/fault_handlers.h"

#include <ucontext.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>

namespace platform::posix {
namespace {

constexpr std::array<int, 4> kFaultSignals = {SIGSEGV, SIGBUS, SIGFPE, SIGILL};

// A handler that ours stands before. Never changed once it is linked: a thread may be reading it in the middle of a
// fault.
struct Displaced {
  struct sigaction action {};
  const Displaced* outer = nullptr;          // what it stood before, as far as we know
  mutable std::atomic<bool> isSpent{false};  // called, and only good for one call
};

// More than four signals will meet in the libraries of one host.
constexpr std::size_t kMostDisplaced = 128;

struct Installation {
  std::mutex mutex;
  int leases = 0;
  std::array<Displaced, kMostDisplaced> known{};
  std::size_t knownCount = 0;
  // What each signal is passed to; null before the first lease.
  std::array<std::atomic<const Displaced*>, kFaultSignals.size()> displaced{};
};
constinit Installation installation;

// The signal that this thread has passed on, and where it goes if it is handed back.
struct Passing {
  const void* context = nullptr;
  const void* frame = nullptr;
  const Displaced* next = nullptr;
};
constinit thread_local Passing passing __attribute__((tls_model("initial-exec"))){};

std::atomic<const Displaced*>& displacedBy(int signal) {
  const auto* const found = std::find(kFaultSignals.begin(), kFaultSignals.end(), signal);
  return installation.displaced[static_cast<std::size_t>(found - kFaultSignals.begin())];
}

bool isSame(const struct sigaction& a, const struct sigaction& b) {
  if (a.sa_flags != b.sa_flags) return false;
  return (a.sa_flags & SA_SIGINFO) != 0 ? a.sa_sigaction == b.sa_sigaction : a.sa_handler == b.sa_handler;
}

bool isOurs(const struct sigaction& action, SignalHandler handler) {
  return (action.sa_flags & SA_SIGINFO) != 0 && action.sa_sigaction == handler;
}

// Null when there is no room for another.
const Displaced* remember(const struct sigaction& action, const Displaced* outer) {
  for (std::size_t i = 0; i < installation.knownCount; ++i) {
    const Displaced& known = installation.known[i];
    if (known.outer == outer && isSame(known.action, action)) return &known;
  }
  if (installation.knownCount == kMostDisplaced) return nullptr;
  Displaced& made = installation.known[installation.knownCount++];
  made.action = action;
  made.outer = outer;
  return &made;
}

// The chain without a handler that comes to stand before all of it.
const Displaced* without(const struct sigaction& action, const Displaced* chain) {
  if (chain == nullptr) return nullptr;
  if (isSame(chain->action, action)) return chain->outer;
  return remember(chain->action, without(action, chain->outer));
}

// What cannot be remembered is left where it is.
void displace(int signal, const struct sigaction& current, const struct sigaction& ours) {
  std::atomic<const Displaced*>& place = displacedBy(signal);
  const Displaced* const top = remember(current, without(current, place));
  if (top == nullptr) return;
  top->isSpent = false;
  place = top;
  ::sigaction(signal, &ours, nullptr);
}

void install(SignalHandler handler) {
  struct sigaction ours {};
  ours.sa_sigaction = handler;
  ours.sa_flags = SA_SIGINFO | SA_ONSTACK;
  // With all of them blocked a fault inside the handler ends the process instead of coming back to it.
  sigemptyset(&ours.sa_mask);
  for (const int signal : kFaultSignals) sigaddset(&ours.sa_mask, signal);
  for (const int signal : kFaultSignals) {
    struct sigaction current {};
    ::sigaction(signal, nullptr, &current);
    if (!isOurs(current, handler)) displace(signal, current, ours);
  }
}

// The last of a chain stays: another thread's signal may be on its way to it, and a handler that came after ours may
// go on handing signals to ours.
void restore(SignalHandler handler) {
  for (const int signal : kFaultSignals) {
    struct sigaction current {};
    ::sigaction(signal, nullptr, &current);
    if (!isOurs(current, handler)) continue;
    const Displaced* const top = displacedBy(signal);
    ::sigaction(signal, &top->action, nullptr);
    if (top->outer != nullptr) displacedBy(signal) = top->outer;
  }
}

// The mask under which the previous handler would have run.
void enterMaskOf(const struct sigaction& previous, int signal, const ucontext_t& interrupted) {
  sigset_t mask;
  sigorset(&mask, &previous.sa_mask, &interrupted.uc_sigmask);
  if ((previous.sa_flags & SA_NODEFER) == 0) sigaddset(&mask, signal);
  ::pthread_sigmask(SIG_SETMASK, &mask, nullptr);
}

// A machine fault comes again when its instruction is taken up again; a signal that was sent must be sent once more.
void takeAgain(int signal, const siginfo_t& info, const struct sigaction& disposition) {
  const bool isSent = info.si_code <= 0;
  if (isSent && disposition.sa_handler == SIG_IGN) return;
  ::sigaction(signal, &disposition, nullptr);
  if (isSent) ::raise(signal);
}

bool isFunction(const struct sigaction& action) {
  return (action.sa_flags & SA_SIGINFO) != 0 || (action.sa_handler != SIG_DFL && action.sa_handler != SIG_IGN);
}

bool isUsedUp(const Displaced& previous) {
  const bool once = (previous.action.sa_flags & static_cast<int>(SA_RESETHAND)) != 0;
  return once && previous.isSpent.exchange(true);
}

void call(const struct sigaction& action, const Delivery& delivery) {
  enterMaskOf(action, delivery.signal, *static_cast<const ucontext_t*>(delivery.context));
  if ((action.sa_flags & SA_SIGINFO) != 0) {
    action.sa_sigaction(delivery.signal, delivery.info, delivery.context);
  } else {
    action.sa_handler(delivery.signal);
  }
}

}  // namespace

HandlerLease::HandlerLease(SignalHandler handler) : handler_(handler) {
  const std::lock_guard lock(installation.mutex);
  install(handler_);
  ++installation.leases;
}

HandlerLease::~HandlerLease() {
  const std::lock_guard lock(installation.mutex);
  if (--installation.leases == 0) restore(handler_);
}

void renewHandlers(SignalHandler handler) {
  const std::lock_guard lock(installation.mutex);
  install(handler);
}

// The handler that hands a signal back calls ours from inside our own frame, with the context that it got. One that has
// left by a jump instead leaves the same record behind, but the next signal's frame is not deeper.
bool Delivery::isHandedBack() const { return passing.context == context && frame < passing.frame; }

void passToPreviousHandler(const Delivery& delivery) {
  static constexpr struct sigaction kSystemsOwn {};
  const Displaced* const previous = delivery.isHandedBack() ? passing.next : displacedBy(delivery.signal).load();
  if (previous == nullptr || (isFunction(previous->action) && isUsedUp(*previous))) {
    takeAgain(delivery.signal, *delivery.info, kSystemsOwn);
  } else if (!isFunction(previous->action)) {
    takeAgain(delivery.signal, *delivery.info, previous->action);
  } else {
    const Passing before = passing;
    passing = {delivery.context, delivery.frame, previous->outer};
    call(previous->action, delivery);
    passing = before;
  }
}

}  // namespace platform::posix
