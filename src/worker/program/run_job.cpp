#include "worker/program/run_job.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>

#include "worker/conversation/session.h"
#include "worker/program/record_folder.h"

namespace worker {
namespace {

constexpr std::chrono::seconds kPatienceAtEnd{20};

double secondsNow() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// A crash description begins with the process that crashed, on a line of its own.
bool isCrash(const std::string& error) { return error.find("\nProcess:  ") != std::string::npos; }

void keepCrash(const std::string& folder, const std::string& name, const std::string& error,
               const std::deque<std::string>& lastLines, Console& console) {
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  const std::string path = (std::filesystem::path(folder) / name).string();
  std::ofstream stream(path);
  stream << error << "\n\nThe host's last lines:\n" << fmt::format("{}\n", fmt::join(lastLines, "\n"));
  if (stream.flush())
    console.warning("The crash description is kept in " + path);
  else
    console.warning("The crash description could not be kept in " + path);
}

void keepCrashes(const RunOptions& options, const JobResult& result, const std::deque<std::string>& lastLines,
                 Console& console) {
  if (options.crashReportFolder.empty()) return;
  if (isCrash(result.message))
    keepCrash(options.crashReportFolder, "crash-job.txt", result.message, lastLines, console);
  for (const FrameResult& frame : result.frames)
    for (const std::string& error : frame.errors)
      if (isCrash(error))
        keepCrash(options.crashReportFolder, fmt::format("crash-frame-{}.txt", frame.frame), error, lastLines, console);
}

// The plug-in renders into the local folder but does not make it.
void makeLocalFolder(const Job& job) {
  if (job.localFolder.empty()) return;
  std::error_code error;
  std::filesystem::create_directories(job.localFolder, error);
  if (error)
    throw std::runtime_error(fmt::format("The local folder {} cannot be made: {}", job.localFolder, error.message()));
}

ExitCode exitCodeOf(platform::Stop stop) {
  switch (stop) {
    case platform::Stop::terminate:
      return ExitCode::terminated;
    case platform::Stop::hangUp:
      return ExitCode::hungUp;
    case platform::Stop::interrupt:
    case platform::Stop::none:
      break;
  }
  return ExitCode::interrupted;
}

ExitCode exitCodeOf(const Job& job, const JobResult& result, platform::Stop stop) {
  switch (result.status) {
    case JobStatus::refused:
      return ExitCode::jobRefused;
    case JobStatus::hostFailed:
      return result.message == HostLink::kInterrupted ? exitCodeOf(stop) : ExitCode::hostFailed;
    case JobStatus::done:
      break;
  }
  const bool complete =
      result.frames.size() == job.frames.size() &&
      std::all_of(result.frames.begin(), result.frames.end(), [](const FrameResult& f) { return f.rendered; });
  return complete ? ExitCode::success : ExitCode::framesFailed;
}

}  // namespace

ExitCode runJob(const Job& job, const RunOptions& options) {
  Console console(stdout, options.console);
  const double begin = secondsNow();
  const platform::StopSignals stop;
  HostOptions host = options.host;
  host.stop = &stop;
  host.records = (options.recordFolder.empty() ? makeRecordFolder(job) : options.recordFolder) + "/hosts";
  host.onHostLine = [&console](const std::string& line) { console.hostLine(line); };
  host.onWarning = [&console](const std::string& line) { console.warning(line); };

  JobResult result;
  std::deque<std::string> lastLines;
  try {
    makeLocalFolder(job);
    HostLink link(host);
    result = Session(job, link, console, secondsNow).run();
    // A host leaves by itself once the connection is closed. Where a script or a setting ended the conversation, its
    // start-up script has failed, and its exit code says no more than that.
    if (result.status != JobStatus::hostFailed && !link.finish(kPatienceAtEnd) && result.status == JobStatus::done)
      console.warning("The host did not end properly after the job");
    lastLines = link.lastLines();
  } catch (const HostFailure& e) {
    result.status = JobStatus::hostFailed;
    result.message = e.what();
  }
  console.report(job, result, secondsNow() - begin);
  keepCrashes(options, result, lastLines, console);
  return exitCodeOf(job, result, stop.asked());
}

}  // namespace worker
