#include "worker/command_line/command_line.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <boost/tokenizer.hpp>
#include <optional>
#include <sstream>

#include "worker/job/frame_set.h"
#include "worker/job/job_file.h"
#include "worker/job/paths.h"

namespace worker {
namespace {

constexpr double kDefaultTimeout = 300;

struct Arguments {
  std::string scene, frames, output, camera, jpegFolder, localFolder, jobFile;
  std::string host;
  std::optional<double> timeout;
  double grace = 0;
  std::vector<std::string> settings, preJob, perFrame, postJob, mappings;
  std::string crashReport, record;
  bool verbose = false, quiet = false, plain = false, stopOnError = false;
};

void addCommonOptions(CLI::App& command, Arguments& arguments) {
  command.add_option(
      "--host", arguments.host,
      "Command that starts the host; {script} stands for the start-up script, which is appended otherwise "
      "(default: standin-host beside this program)");
  command.add_option("--timeout", arguments.timeout, "Seconds that the host may say nothing before it counts as hung")
      ->check(CLI::PositiveNumber)
      ->default_str(fmt::format("{}", kDefaultTimeout));
  command
      .add_option("--grace", arguments.grace,
                  "Seconds that the frame under way is given to finish when the worker is asked to terminate")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  command.add_option("--record", arguments.record,
                     "Folder for what is kept of the job and its hosts (default: the output's name with .job)");
  command.add_option("--crash-report", arguments.crashReport,
                     "Folder that keeps the description of a crash inside the host");
  command.add_flag("-v,--verbose", arguments.verbose, "Show the log lines of the plug-in and the host");
  command.add_flag("-q,--quiet", arguments.quiet, "Show warnings, errors and the last line only");
  command.add_flag("--plain", arguments.plain, "No progress bars and colours, even on a terminal");
}

void addRender(CLI::App& app, Arguments& arguments) {
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
}

void addRun(CLI::App& app, Arguments& arguments) {
  CLI::App* run = app.add_subcommand("run", "Run the job that a JSON file describes (see docs/worker.md)");
  run->add_option("job", arguments.jobFile, "Job file")->required()->check(CLI::ExistingFile);
  addCommonOptions(*run, arguments);
}

// Help where the arguments ask for it, nothing where they were read.
std::optional<Help> parse(std::vector<std::string> texts, Arguments& arguments) {
  CLI::App app{"Renders a job through a 3D host application that has the Corvantis plug-in.", "tessaryn-worker"};
  app.require_subcommand(1);
  app.footer(
      "Example: tessaryn-worker render examples/orrery.gltf --frames 1-24 --output out/beauty.exr --jpeg "
      "out/preview\n\n"
      "Exit codes: 0 every frame was rendered and saved, 1 some frames failed, 2 wrong usage, 3 the host did not "
      "start,\n"
      "died or hung, 4 the scene, a setting or a script was refused, 75 terminated, 129 hung up, 130 interrupted.");
  addRender(app, arguments);
  addRun(app, arguments);
  try {
    std::reverse(texts.begin(), texts.end());  // as the parser takes them
    app.parse(std::move(texts));
    return std::nullopt;
  } catch (const CLI::ParseError& e) {
    std::ostringstream help, complaint;
    if (app.exit(e, help, complaint) != 0) throw WrongUsage(complaint.str());
    return Help{help.str()};
  }
}

// The fields of a settings command as a user writes it: commas separate, double quotes protect a comma. Backslashes
// stand for themselves, so Windows paths need no care.
std::vector<std::string> splitFields(const std::string& text) {
  std::vector<std::string> fields(1);
  bool quoted = false;
  for (const char c : text) {
    if (c == '"')
      quoted = !quoted;
    else if (c == ',' && !quoted)
      fields.emplace_back();
    else
      fields.back() += c;
  }
  return fields;
}

// A command line as a shell would split it: blanks separate, quotes of both kinds and backslashes protect.
std::vector<std::string> splitCommand(const std::string& text) {
  using Separator = boost::escaped_list_separator<char>;
  std::vector<std::string> words;
  for (const std::string& word : boost::tokenizer<Separator>(text, Separator("\\", " \t", "\"'")))
    if (!word.empty()) words.push_back(word);
  return words;
}

std::chrono::milliseconds milliseconds(double seconds) {
  return std::chrono::milliseconds(static_cast<std::int64_t>(std::min(seconds, 1e9) * 1000));
}

std::vector<std::string> absolutePaths(const std::vector<std::string>& paths) {
  std::vector<std::string> list;
  list.reserve(paths.size());
  for (const std::string& path : paths) list.push_back(absolutePath(path));
  return list;
}

PathMapping readMapping(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0)
    throw std::invalid_argument(fmt::format("--map: expected FROM=TO, got \"{}\"", text));
  return {text.substr(0, equals), text.substr(equals + 1)};
}

Job jobOf(const Arguments& arguments) {
  Job job;
  job.scene = absolutePath(arguments.scene);
  job.output = absolutePath(arguments.output);
  job.jpegFolder = absolutePath(arguments.jpegFolder);
  job.localFolder = absolutePath(arguments.localFolder);
  job.camera = arguments.camera;
  job.frames = parseFrameSet(arguments.frames);
  for (const std::string& setting : arguments.settings) job.settings.push_back(splitFields(setting));
  job.preJobScripts = absolutePaths(arguments.preJob);
  job.perFrameScripts = absolutePaths(arguments.perFrame);
  job.postJobScripts = absolutePaths(arguments.postJob);
  for (const std::string& mapping : arguments.mappings) job.pathMappings.push_back(readMapping(mapping));
  job.stopOnError = arguments.stopOnError;
  return job;
}

Request requestOf(const Arguments& arguments) {
  Request request;
  std::string host = arguments.host;
  std::optional<double> timeout = arguments.timeout;
  if (arguments.jobFile.empty()) {
    request.job = jobOf(arguments);
  } else {
    JobFile file = readJobFile(arguments.jobFile);
    request.job = std::move(file.job);
    if (!timeout) timeout = file.timeout;
    if (host.empty()) host = file.host.value_or("");
  }
  request.host = splitCommand(host);
  if (!host.empty() && request.host.empty()) throw std::invalid_argument("--host: expected a command, got nothing");
  request.silence = milliseconds(timeout.value_or(kDefaultTimeout));
  request.grace = milliseconds(arguments.grace);
  request.recordFolder = absolutePath(arguments.record);
  request.crashReportFolder = absolutePath(arguments.crashReport);
  request.verbose = arguments.verbose;
  request.quiet = arguments.quiet;
  request.plain = arguments.plain;
  return request;
}

}  // namespace

std::variant<Request, Help> readCommandLine(std::vector<std::string> texts) {
  Arguments arguments;
  if (const auto help = parse(std::move(texts), arguments)) return *help;
  return requestOf(arguments);
}

}  // namespace worker
