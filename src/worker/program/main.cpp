// tessaryn-worker: renders one job through a host that has the plug-in.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <boost/dll/runtime_symbol_info.hpp>
#include <exception>
#include <filesystem>
#include <fstream>

#include "platform/terminal.h"
#include "worker/job/frame_set.h"
#include "worker/job/job_file.h"
#include "worker/program/run_job.h"

namespace {

namespace fs = std::filesystem;

struct Arguments {
  std::string scene, frames, output, camera, jpegFolder, localFolder, jobFile;
  std::string host;
  double timeout = 300;
  std::vector<std::string> settings, preJob, perFrame, postJob, mappings;
  std::string crashReport;
  bool verbose = false, quiet = false, plain = false, stopOnError = false;
};

std::string absolute(const std::string& path) {
  return path.empty() ? path : fs::absolute(path).lexically_normal().string();
}

std::string defaultHost() {
  const auto folder = boost::dll::program_location().parent_path();
  return (folder / "standin-host").string();
}

void addCommonOptions(CLI::App& command, Arguments& arguments) {
  command.add_option(
      "--host", arguments.host,
      "Command that starts the host; {script} stands for the start-up script, which is appended otherwise "
      "(default: standin-host beside this program)");
  command.add_option("--timeout", arguments.timeout, "Seconds that the host may say nothing before it counts as hung")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  command.add_option("--crash-report", arguments.crashReport,
                     "Folder that keeps the description of a crash inside the host");
  command.add_flag("-v,--verbose", arguments.verbose, "Show the log lines of the plug-in and the host");
  command.add_flag("-q,--quiet", arguments.quiet, "Show warnings, errors and the last line only");
  command.add_flag("--plain", arguments.plain, "No progress bars and colours, even on a terminal");
}

CLI::App* addRender(CLI::App& app, Arguments& arguments) {
  CLI::App* render = app.add_subcommand("render", "Render frames of a scene");
  render->add_option("scene", arguments.scene, "Scene file")->required()->check(CLI::ExistingFile);
  render->add_option("-f,--frames", arguments.frames, "Frames, such as 1-24,30,40-50x2")->required();
  render->add_option("-o,--output", arguments.output,
                     "Image file; the frame number is put before its extension (default: as the scene says)");
  render->add_option("-c,--camera", arguments.camera, "Camera to render through (default: the scene's viewport)");
  render->add_option("-j,--jpeg", arguments.jpegFolder, "Folder for a JPEG preview of each frame");
  render->add_option("-l,--local", arguments.localFolder,
                     "Folder to render into first; finished files are then moved to the output");
  render->add_option(
      "--set", arguments.settings,
      "A settings command with its parameters, such as --set GammaCorrection,2.2,2.2; may be given again");
  render->add_option("--pre-job", arguments.preJob, "MAXScript file to run once the scene is loaded")
      ->check(CLI::ExistingFile);
  render->add_option("--per-frame", arguments.perFrame, "MAXScript file to run before each frame")
      ->check(CLI::ExistingFile);
  render->add_option("--post-job", arguments.postJob, "MAXScript file to run after the last frame")
      ->check(CLI::ExistingFile);
  render->add_option("--map", arguments.mappings, "Path mapping FROM=TO for paths that scripts ask about");
  render->add_flag("--stop-on-error", arguments.stopOnError, "Do not go on after a frame that failed");
  addCommonOptions(*render, arguments);
  return render;
}

CLI::App* addRun(CLI::App& app, Arguments& arguments) {
  CLI::App* run = app.add_subcommand("run", "Run the job that a JSON file describes (see docs/worker.md)");
  run->add_option("job", arguments.jobFile, "Job file")->required()->check(CLI::ExistingFile);
  addCommonOptions(*run, arguments);
  return run;
}

std::vector<std::string> absoluteAll(const std::vector<std::string>& paths) {
  std::vector<std::string> list;
  list.reserve(paths.size());
  for (const std::string& path : paths) list.push_back(absolute(path));
  return list;
}

worker::PathMapping readMapping(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0)
    throw std::invalid_argument(fmt::format("--map: expected FROM=TO, got \"{}\"", text));
  return {text.substr(0, equals), text.substr(equals + 1)};
}

worker::Job jobOf(const Arguments& arguments) {
  worker::Job job;
  job.scene = absolute(arguments.scene);
  job.output = absolute(arguments.output);
  job.jpegFolder = absolute(arguments.jpegFolder);
  job.localFolder = absolute(arguments.localFolder);
  job.camera = arguments.camera;
  job.frames = worker::parseFrameSet(arguments.frames);
  for (const std::string& setting : arguments.settings) job.settings.push_back(worker::splitFields(setting));
  job.preJobScripts = absoluteAll(arguments.preJob);
  job.perFrameScripts = absoluteAll(arguments.perFrame);
  job.postJobScripts = absoluteAll(arguments.postJob);
  for (const std::string& mapping : arguments.mappings) job.pathMappings.push_back(readMapping(mapping));
  job.stopOnError = arguments.stopOnError;
  return job;
}

worker::ExitCode execute(const Arguments& arguments) {
  worker::Job job;
  double timeout = arguments.timeout;
  std::string host = arguments.host;
  if (!arguments.jobFile.empty()) {
    worker::JobFile file = worker::readJobFile(arguments.jobFile);
    job = std::move(file.job);
    timeout = file.timeout.value_or(timeout);
    if (host.empty()) host = file.host.value_or("");
  } else {
    job = jobOf(arguments);
  }

  worker::RunOptions options;
  options.host.command = host.empty() ? std::vector<std::string>{defaultHost()} : worker::splitCommand(host);
  if (options.host.command.empty()) throw std::invalid_argument("--host: expected a command, got nothing");
  options.host.silence = std::chrono::milliseconds(static_cast<std::int64_t>(std::min(timeout, 1e9) * 1000));
  options.console.terminal = !arguments.plain && platform::outputIsTerminal();
  options.console.verbose = arguments.verbose;
  options.console.quiet = arguments.quiet;
  options.console.width = platform::terminalWidth();
  options.crashReportFolder = absolute(arguments.crashReport);
  return worker::runJob(job, options);
}

}  // namespace

int main(int argc, char** argv) {
  Arguments arguments;
  CLI::App app{"Renders a job through a 3D host application that has the Corvantis plug-in.", "tessaryn-worker"};
  app.require_subcommand(1);
  app.footer(
      "Example: tessaryn-worker render examples/orrery.gltf --frames 1-24 --output out/beauty.exr --jpeg "
      "out/preview\n\n"
      "Exit codes: 0 every frame was rendered and saved, 1 some frames failed, 2 wrong usage, 3 the host did not "
      "start,\n"
      "died or hung, 4 the scene, a setting or a script was refused, 130 interrupted.");
  addRender(app, arguments);
  addRun(app, arguments);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e) == 0 ? 0 : static_cast<int>(worker::ExitCode::usage);
  }
  try {
    return static_cast<int>(execute(arguments));
  } catch (const std::exception& e) {
    fmt::print(stderr, "tessaryn-worker: {}\n", e.what());
    return static_cast<int>(worker::ExitCode::usage);
  }
}
