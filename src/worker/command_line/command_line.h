// The worker's command line: from arguments to a job and how it is to be run.
#pragma once

#include <chrono>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "worker/job/job.h"

namespace worker {

// What the user asks for. Paths are native and absolute.
struct Request {
  Job job;
  std::vector<std::string> host;  // program and arguments; empty: the host beside this program
  std::chrono::milliseconds silence{300000};
  std::chrono::milliseconds grace{0};  // for the frame under way when the worker is asked to terminate
  std::string recordFolder;            // empty: its default place
  std::string crashReportFolder;       // empty: crash descriptions are only printed
  bool verbose = false;
  bool quiet = false;
  bool plain = false;
};

// The user asks how the program is used: what to print.
struct Help {
  std::string text;
};

// The arguments make no request; what() is what to print, line ends included.
class WrongUsage : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads the arguments that follow the program's name, and the job file if they name one; what an option and the file
// both say, the option decides. Relative paths of the arguments begin at the current folder. Throws WrongUsage for what
// the options do not allow, std::invalid_argument for a frame set, mapping or host command that cannot be read, and
// what readJobFile throws.
std::variant<Request, Help> readCommandLine(std::vector<std::string> arguments);

}  // namespace worker
