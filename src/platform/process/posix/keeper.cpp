#include "platform/process/keeper.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <optional>

namespace platform {
namespace {

// How often it looks whether the worker is stopped.
constexpr int kLookMilliseconds = 200;
// How often it tries again while ending what runs.
constexpr int kEndMilliseconds = 5;

// Signals by which a terminal, a user or a scheduler ends whole groups: the keeper lives by its line alone, so that the
// worker decides.
constexpr std::array kIgnored{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGTSTP, SIGTTIN, SIGTTOU, SIGUSR1, SIGUSR2};

class Keeper {
 public:
  Keeper() : line_(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)), worker_(::getppid()) {
    for (const int signal : kIgnored) std::signal(signal, SIG_IGN);
    ::setsid();
    adoptOrphans();
    sigset_t childEnds;
    sigemptyset(&childEnds);
    sigaddset(&childEnds, SIGCHLD);
    ::sigprocmask(SIG_BLOCK, &childEnds, nullptr);
    childEnds_ = ::signalfd(-1, &childEnds, SFD_CLOEXEC | SFD_NONBLOCK);
    putNothing(STDIN_FILENO, O_RDONLY);
  }

  int run(const std::vector<std::string>& command) {
    if (line_ < 0 || childEnds_ < 0) return 1;
    if (const int error = start(command); error != 0) {
      tell("failed", error);
      return 1;
    }
    tell("started", host_);
    // The host's outputs must show their end when the host has closed them.
    putNothing(STDOUT_FILENO, O_WRONLY);
    putNothing(STDERR_FILENO, O_WRONLY);
    while (!ending_) {
      watch(kLookMilliseconds);
      if (!reap()) break;
      followWorker();
    }
    while (reap()) {
      order(processesBelow(::getpid()), Order::end);
      awaitChildEnd(kEndMilliseconds);
    }
    tell("gone");
    return 0;
  }

 private:
  // 0, or the error number of the first step that failed. The child tells through a pipe that its start closes.
  int start(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    int pipe[2];
    if (::pipe2(pipe, O_CLOEXEC) != 0) return errno;
    const pid_t keeper = ::getpid();
    host_ = ::fork();
    if (host_ == 0) {
      becomeHost(keeper, arguments.data());
      const int error = errno;
      (void)!::write(pipe[1], &error, sizeof error);
      ::_exit(127);
    }
    ::close(pipe[1]);
    int error = host_ < 0 ? errno : 0;
    if (host_ > 0 && ::read(pipe[0], &error, sizeof error) > 0) ::waitpid(host_, nullptr, 0);
    ::close(pipe[0]);
    return error;
  }

  // Returns only when the program cannot be started.
  static void becomeHost(pid_t keeper, char** arguments) {
    ::setpgid(0, 0);  // a host that signals its group means itself
    for (const int signal : kIgnored) std::signal(signal, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    // The second line, for a keeper that is killed.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL, 0, 0, 0);
    if (::getppid() != keeper) ::_exit(127);
    ::execvp(arguments[0], arguments);
  }

  // Waits for an end of a child, for the worker's end and for time to pass.
  void watch(int milliseconds) {
    std::array<pollfd, 2> watched{{{line_, POLLIN, 0}, {childEnds_, POLLIN, 0}}};
    if (::poll(watched.data(), watched.size(), milliseconds) <= 0) return;
    if (watched[0].revents != 0) {
      char byte = 0;
      const ssize_t got = ::recv(line_, &byte, 1, MSG_DONTWAIT);
      if (got == 0 || (got < 0 && errno != EAGAIN && errno != EINTR)) ending_ = true;
    }
    clearChildEnds();
  }

  void awaitChildEnd(int milliseconds) {
    pollfd watched{childEnds_, POLLIN, 0};
    ::poll(&watched, 1, milliseconds);
    clearChildEnds();
  }

  void clearChildEnds() {
    signalfd_siginfo seen;
    while (::read(childEnds_, &seen, sizeof seen) > 0) {
    }
  }

  // False when nothing of the host is left.
  bool reap() {
    for (;;) {
      int status = 0;
      const pid_t ended = ::waitpid(-1, &status, WNOHANG);
      if (ended == 0) return true;
      if (ended < 0) return errno == EINTR;
      if (ended != host_) continue;
      const bool signalled = WIFSIGNALED(status);
      tell(signalled ? "signalled" : "exited", signalled ? WTERMSIG(status) : WEXITSTATUS(status));
      if (status != 0) ending_ = true;
    }
  }

  void followWorker() {
    const bool stopped = isStopped(worker_);
    if (stopped || stopped_) order(processesBelow(::getpid()), stopped ? Order::stop : Order::go);
    stopped_ = stopped;
  }

  void tell(const char* word, std::optional<int> number = std::nullopt) {
    char text[64];
    const int size = number ? std::snprintf(text, sizeof text, "%s %d\n", word, *number)
                            : std::snprintf(text, sizeof text, "%s\n", word);
    (void)!::send(line_, text, static_cast<std::size_t>(size), MSG_NOSIGNAL);
  }

  static void putNothing(int handle, int mode) {
    const int nothing = ::open("/dev/null", mode | O_CLOEXEC);
    if (nothing < 0) return;
    ::dup2(nothing, handle);
    ::close(nothing);
  }

  int line_;
  pid_t worker_;
  int childEnds_ = -1;
  pid_t host_ = 0;
  bool stopped_ = false;
  bool ending_ = false;
};

}  // namespace

int keep(const std::vector<std::string>& command) { return Keeper().run(command); }

}  // namespace platform
