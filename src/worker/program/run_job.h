// Runs one job in one host process and reports it to the user.
#pragma once

#include <string>

#include "worker/host/host_link.h"
#include "worker/job/job.h"
#include "worker/report/console.h"

namespace worker {

// Exit codes that scripts can trust.
enum class ExitCode {
  success = 0,  // every frame was rendered and saved
  framesFailed = 1,
  usage = 2,
  hostFailed = 3,   // the host did not start, died, hung or broke the protocol
  jobRefused = 4,   // the scene could not be opened, or a setting or script failed
  terminated = 75,  // asked to stop by TERM: worth starting again
  hungUp = 129,
  interrupted = 130
};

struct RunOptions {
  HostOptions host;
  ConsoleOptions console;
  std::string recordFolder;       // empty: its default place
  std::string crashReportFolder;  // empty: crash descriptions are only printed
};

ExitCode runJob(const Job& job, const RunOptions& options);

}  // namespace worker
