#include "platform/process/process_tree.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

namespace platform {
namespace {

namespace fs = std::filesystem;

// /proc/ID/stat; the fields count from behind the program's name, which may hold anything.
std::optional<ProcessState> readState(const std::string& id) {
  std::ifstream file("/proc/" + id + "/stat");
  std::string line;
  std::getline(file, line, '\0');
  const std::size_t name = line.rfind(')');
  if (name == std::string::npos) return std::nullopt;
  std::istringstream fields(line.substr(name + 1));
  ProcessState process;
  std::uint64_t userTicks = 0, systemTicks = 0, pages = 0;
  std::string skipped;
  const auto skip = [&](int count) {
    for (int i = 0; i < count; ++i) fields >> skipped;
  };
  fields >> process.state >> process.parent;
  skip(9);
  fields >> userTicks >> systemTicks;
  skip(8);
  if (!(fields >> pages)) return std::nullopt;
  process.id = std::stoll(id);
  process.cpuMilliseconds = (userTicks + systemTicks) * 1000 / static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
  process.residentBytes = pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
  return process;
}

std::vector<ProcessState> allProcesses() {
  std::vector<ProcessState> all;
  std::error_code error;
  for (fs::directory_iterator entry("/proc", error), end; !error && entry != end; entry.increment(error)) {
    const std::string id = entry->path().filename().string();
    if (id.find_first_not_of("0123456789") != std::string::npos) continue;
    if (const auto process = readState(id)) all.push_back(*process);
  }
  return all;
}

}  // namespace

std::vector<ProcessState> processesBelow(ProcessId root) {
  std::vector<ProcessState> rest = allProcesses(), below;
  std::vector<ProcessId> parents{root};
  while (!parents.empty()) {
    const auto children = std::partition(rest.begin(), rest.end(), [&](const ProcessState& process) {
      return std::find(parents.begin(), parents.end(), process.parent) == parents.end();
    });
    parents.clear();
    for (auto child = children; child != rest.end(); ++child) parents.push_back(child->id);
    below.insert(below.end(), children, rest.end());
    rest.erase(children, rest.end());
  }
  return below;
}

bool isStopped(ProcessId process) {
  const auto state = readState(std::to_string(process));
  return state && state->state == 'T';
}

void order(const std::vector<ProcessState>& processes, Order order) {
  const int signal = order == Order::stop ? SIGSTOP : order == Order::go ? SIGCONT : SIGKILL;
  for (const ProcessState& process : processes)
    if (process.state != 'Z') ::kill(static_cast<pid_t>(process.id), signal);
}

ProcessId ownProcessId() { return ::getpid(); }

void adoptOrphans() { ::prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0); }

bool endAllBelow() {
  pid_t waited = 0;
  do {
    order(processesBelow(::getpid()), Order::end);
    waited = ::waitpid(-1, nullptr, WNOHANG);
  } while (waited > 0);
  return waited < 0;
}

}  // namespace platform
