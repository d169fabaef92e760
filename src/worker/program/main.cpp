// tessaryn-worker: renders one job through a host that has the plug-in.
#include <fmt/format.h>

#include <boost/dll/runtime_symbol_info.hpp>
#include <exception>

#include "platform/environment.h"
#include "worker/command_line/command_line.h"
#include "worker/program/run_job.h"

namespace {

std::string programBeside(const char* name) { return (boost::dll::program_location().parent_path() / name).string(); }

worker::RunOptions runOptions(const worker::Request& request) {
  worker::RunOptions options;
  options.host.command = request.host.empty() ? std::vector{programBeside("standin-host")} : request.host;
  options.host.keeper = programBeside("tessaryn-keeper");
  options.host.silence = request.silence;
  options.host.grace = request.grace;
  options.console.terminal = !request.plain && platform::outputIsTerminal();
  options.console.verbose = request.verbose;
  options.console.quiet = request.quiet;
  options.console.width = platform::terminalWidth();
  options.recordFolder = request.recordFolder;
  options.crashReportFolder = request.crashReportFolder;
  return options;
}

worker::ExitCode execute(int argc, char** argv) {
  const auto asked = worker::readCommandLine({argv + 1, argv + argc});
  if (const auto* help = std::get_if<worker::Help>(&asked)) {
    fmt::print("{}", help->text);
    return worker::ExitCode::success;
  }
  const auto& request = std::get<worker::Request>(asked);
  return worker::runJob(request.job, runOptions(request));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return static_cast<int>(execute(argc, argv));
  } catch (const worker::WrongUsage& e) {
    fmt::print(stderr, "{}", e.what());
  } catch (const std::exception& e) {
    fmt::print(stderr, "tessaryn-worker: {}\n", e.what());
  }
  return static_cast<int>(worker::ExitCode::usage);
}
