#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include "platform/process/keeper.h"

namespace platform {
namespace {

void check(int error) {
  if (error != 0) throw std::system_error(error, std::generic_category());
}

class Handle {
 public:
  Handle() = default;
  // Moved above the standard handles, which may be closed in this process and are the child's own.
  explicit Handle(int value)
      : value_(value > STDERR_FILENO ? value : ::fcntl(value, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) {
    const int error = errno;
    if (value != value_) ::close(value);
    if (value_ < 0) check(error);
  }
  ~Handle() {
    if (value_ >= 0) ::close(value_);
  }
  Handle(Handle&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  int get() const { return value_; }
  int release() { return std::exchange(value_, -1); }

 private:
  int value_ = -1;
};

using Ends = std::pair<Handle, Handle>;

Ends line() {
  int ends[2];
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) check(errno);
  Handle first(ends[0]);
  return {std::move(first), Handle(ends[1])};
}

Ends pipe() {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) check(errno);
  Handle first(ends[0]);
  return {std::move(first), Handle(ends[1])};
}

// NAME=VALUE for each, the given ones in place of those that this process has.
std::vector<std::string> environmentWith(const std::map<std::string, std::string>& given) {
  std::vector<std::string> texts;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    if (given.count(text.substr(0, text.find('='))) == 0) texts.push_back(text);
  }
  for (const auto& [name, value] : given) texts.emplace_back(name).append("=").append(value);
  return texts;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> list;
  list.reserve(texts.size() + 1);
  for (std::string& text : texts) list.push_back(text.data());
  list.push_back(nullptr);
  return list;
}

// What becomes of handles and signals in the child: the standard handles are its pipes, all others are closed, and no
// signal is ignored or held back.
class ChildSetup {
 public:
  ChildSetup(int input, int output, int errors) {
    check(posix_spawn_file_actions_init(&files_));
    check(posix_spawnattr_init(&attributes_));
    check(posix_spawn_file_actions_adddup2(&files_, input, STDIN_FILENO));
    check(posix_spawn_file_actions_adddup2(&files_, output, STDOUT_FILENO));
    check(posix_spawn_file_actions_adddup2(&files_, errors, STDERR_FILENO));
    check(posix_spawn_file_actions_addclosefrom_np(&files_, STDERR_FILENO + 1));
    sigset_t all, none;
    sigfillset(&all);
    sigemptyset(&none);
    check(posix_spawnattr_setsigdefault(&attributes_, &all));
    check(posix_spawnattr_setsigmask(&attributes_, &none));
    check(posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK));
  }
  ~ChildSetup() {
    posix_spawn_file_actions_destroy(&files_);
    posix_spawnattr_destroy(&attributes_);
  }
  ChildSetup(const ChildSetup&) = delete;
  ChildSetup& operator=(const ChildSetup&) = delete;

  pid_t start(const std::string& program, char** arguments, char** environment) const {
    pid_t child = 0;
    check(::posix_spawn(&child, program.c_str(), &files_, &attributes_, arguments, environment));
    return child;
  }

 private:
  posix_spawn_file_actions_t files_{};
  posix_spawnattr_t attributes_{};
};

}  // namespace

StartedKeeper startKeeper(const std::string& keeper, const std::vector<std::string>& command,
                          const std::map<std::string, std::string>& environment) {
  Ends control = line(), output = pipe(), errors = pipe();
  std::vector<std::string> texts = command, variables = environmentWith(environment);
  texts.insert(texts.begin(), keeper);
  const ChildSetup setup(control.second.get(), output.second.get(), errors.second.get());
  StartedKeeper started;
  started.id = setup.start(keeper, pointers(texts).data(), pointers(variables).data());
  started.line = control.first.release();
  started.output = output.first.release();
  started.errors = errors.first.release();
  return started;
}

void waitForKeeper(ProcessId keeper) {
  while (::waitpid(static_cast<pid_t>(keeper), nullptr, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace platform
