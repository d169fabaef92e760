#include "platform/posix/fault_handlers.h"

#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <mutex>

namespace platform::posix {
namespace {

constexpr std::array<int, 4> kFaultSignals = {SIGSEGV, SIGBUS, SIGFPE, SIGILL};

struct Installation {
  std::mutex mutex;
  int leases = 0;
  std::array<struct sigaction, kFaultSignals.size()> previous{};
};
constinit Installation installation;

struct sigaction& previousOf(int signal) {
  const auto* const found = std::find(kFaultSignals.begin(), kFaultSignals.end(), signal);
  return installation.previous[static_cast<std::size_t>(found - kFaultSignals.begin())];
}

bool isOurs(const struct sigaction& action, SignalHandler handler) {
  return (action.sa_flags & SA_SIGINFO) != 0 && action.sa_sigaction == handler;
}

void install(SignalHandler handler) {
  struct sigaction action {};
  action.sa_sigaction = handler;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  // With all of them blocked a fault inside the handler ends the process instead of coming back to it.
  sigemptyset(&action.sa_mask);
  for (const int signal : kFaultSignals) sigaddset(&action.sa_mask, signal);
  for (const int signal : kFaultSignals) {
    struct sigaction current {};
    ::sigaction(signal, nullptr, &current);
    if (isOurs(current, handler)) continue;
    previousOf(signal) = current;
    ::sigaction(signal, &action, nullptr);
  }
}

void restore(SignalHandler handler) {
  for (const int signal : kFaultSignals) {
    struct sigaction current {};
    ::sigaction(signal, nullptr, &current);
    if (isOurs(current, handler)) ::sigaction(signal, &previousOf(signal), nullptr);
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

}  // namespace

HandlerLease::HandlerLease(SignalHandler handler) : handler_(handler) {
  const std::lock_guard lock(installation.mutex);
  if (installation.leases++ == 0) install(handler_);
}

HandlerLease::~HandlerLease() {
  const std::lock_guard lock(installation.mutex);
  if (--installation.leases == 0) restore(handler_);
}

void passToPreviousHandler(int signal, siginfo_t* info, void* context) {
  struct sigaction& stored = previousOf(signal);
  const struct sigaction previous = stored;
  const bool takesInfo = (previous.sa_flags & SA_SIGINFO) != 0;
  if (!takesInfo && (previous.sa_handler == SIG_DFL || previous.sa_handler == SIG_IGN)) {
    takeAgain(signal, *info, previous);
    return;
  }
  if ((previous.sa_flags & static_cast<int>(SA_RESETHAND)) != 0) {
    stored = {};
    stored.sa_handler = SIG_DFL;
  }
  enterMaskOf(previous, signal, *static_cast<const ucontext_t*>(context));
  if (takesInfo) {
    previous.sa_sigaction(signal, info, context);
  } else {
    previous.sa_handler(signal);
  }
}

AlternateStack::AlternateStack() {
  if (::sigaltstack(nullptr, &previous_) != 0 || (previous_.ss_flags & SS_ONSTACK) != 0) return;
  // What the machine itself needs for a signal frame, and 128 KiB for the filter.
  size_ = std::size_t{128} * 1024 + static_cast<std::size_t>(std::max(::sysconf(_SC_MINSIGSTKSZ), long{MINSIGSTKSZ}));
  const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  size_ = (size_ + page - 1) / page * page;
  void* const memory = ::mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
  if (memory == MAP_FAILED) return;
  stack_t ours{};
  ours.ss_sp = memory;
  ours.ss_size = size_;
  if (::sigaltstack(&ours, nullptr) == 0) {
    memory_ = memory;
  } else {
    ::munmap(memory, size_);
  }
}

AlternateStack::~AlternateStack() {
  if (memory_ == nullptr) return;
  ::sigaltstack(&previous_, nullptr);
  ::munmap(memory_, size_);
}

}  // namespace platform::posix
