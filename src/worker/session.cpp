#include "worker/session.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "worker/answers.h"
#include "worker/path_names.h"

namespace worker {
namespace {

constexpr std::string_view kHandshakeWord = "TessarynStartup";
constexpr std::string_view kIdentification = "Corvantis ";
constexpr std::string_view kFinalFrameError = "Failed to save file.";

// Settings that the plug-in applies while it opens the scene; the others are reset then and must follow.
constexpr std::array<std::string_view, 9> kBeforeStart{
    "GammaCorrection",   "PathConfigFile",    "MergePathConfigFile", "IgnoreMissingExternalFiles",
    "IgnoreMissingUVWs", "IgnoreMissingDLLs", "IgnoreMissingXREFs",  "SlaveFolders",
    "TempFolder"};

bool belongsBeforeStart(const std::string& word) {
  return std::find(kBeforeStart.begin(), kBeforeStart.end(), word) != kBeforeStart.end();
}

}  // namespace

// The job cannot go on, though the host can be talked to.
class Session::Refused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

Session::Session(const Job& job, const std::string& token, Channel& channel, JobObserver& observer,
                 std::function<double()> now)
    : job_(job), token_(token), channel_(channel), observer_(observer), now_(std::move(now)) {}

JobResult Session::run() {
  try {
    handshake();
    observer_.jobStarted(job_, result_.pluginVersion);
    sendSettings(true);
    startJob();
    sendSettings(false);
    runScripts(job_.preJobScripts, false, 0);
    for (std::size_t i = 0; i < job_.frames.size(); ++i) {
      renderFrame(i);
      if (job_.stopOnError && !result_.frames.back().rendered) break;
    }
    runScripts(job_.postJobScripts, false, 0);
    endJob();
  } catch (const Refused& e) {
    result_.status = JobStatus::refused;
    result_.message = e.what();
  } catch (const HostFailure& e) {
    result_.status = JobStatus::hostFailed;
    result_.message = e.what();
  }
  return std::move(result_);
}

void Session::handshake() {
  if (channel_.receive() != token_)
    throw HostFailure("Something other than the host connected: the token it sent is not the one it was given");
  channel_.send(std::string(kHandshakeWord));
  const std::string identification = channel_.receive();
  if (!identification.starts_with(kIdentification))
    throw HostFailure(
        fmt::format("Expected \"{}\" and a version from the plug-in, got \"{}\"", kIdentification, identification));
  result_.pluginVersion = identification.substr(kIdentification.size());
}

void Session::sendSettings(bool beforeStart) {
  for (const auto& setting : job_.settings)
    if (belongsBeforeStart(setting.front()) == beforeStart) command(setting);
  if (beforeStart) {
    if (!job_.localFolder.empty()) command({"TempFolder", windowsName(job_.localFolder)});
    return;
  }
  if (!job_.localFolder.empty()) command({"LocalRendering"});
  if (!job_.output.empty()) command({"OutputImageFilename", windowsName(job_.output)});
  if (!job_.output.empty()) command({"OverrideSaveFile", "1"});
  if (!job_.jpegFolder.empty()) command({"UseJpegOutput", windowsName(job_.jpegFolder)});
}

void Session::startJob() {
  command({"StartJob", windowsName(job_.scene), job_.camera});
  std::string errors;
  for (;;) {
    const Message reply = nextReply();
    if (reply.kind == MessageKind::success) break;
    if (reply.kind != MessageKind::error) throw HostFailure("Unexpected reply to StartJob: " + reply.text);
    errors += (errors.empty() ? "" : "\n") + reply.text;
    // A line that cannot be run is answered by its error alone.
    if (reply.text.starts_with("StartJob: ")) throw Refused(errors);
  }
  if (!errors.empty()) throw Refused(errors);
}

void Session::renderFrame(std::size_t index) {
  FrameResult frame;
  frame.frame = job_.frames[index];
  current_ = &frame;
  observer_.frameStarted(index);
  const double begin = now_();
  const auto finish = [&] {
    frame.seconds = now_() - begin;
    current_ = nullptr;
    observer_.frameFinished(index, frame);
    result_.frames.push_back(std::move(frame));
  };
  try {
    command({"CurrentTask", std::to_string(index)});
    runScripts(job_.perFrameScripts, true, frame.frame);
    command({"RenderTask", std::to_string(frame.frame)});
    for (bool started = false;;) {
      const Message reply = nextReply();
      if (reply.kind == MessageKind::started) {
        started = true;
      } else if (reply.kind == MessageKind::success && started) {
        frame.rendered = frame.errors.empty();
        break;
      } else if (reply.kind == MessageKind::error) {
        // Before STARTED an error that is not RenderTask's own answers one of the settings.
        if (!started && !reply.text.starts_with("RenderTask: ")) throw Refused(reply.text);
        if (reply.text != kFinalFrameError || frame.errors.empty()) frame.errors.push_back(reply.text);
        if (!started || reply.text == kFinalFrameError) break;
      } else {
        throw HostFailure("Unexpected reply to RenderTask: " + reply.text);
      }
    }
  } catch (const std::runtime_error& e) {
    frame.errors.push_back(e.what());
    finish();
    throw;
  }
  finish();
}

void Session::endJob() {
  command({"EndJob"});
  std::string errors;
  for (;;) {
    const Message reply = nextReply();
    if (reply.kind == MessageKind::success) break;
    errors += (errors.empty() ? "" : "\n") + reply.text;
  }
  if (!errors.empty()) throw Refused(errors);
}

void Session::runScripts(const std::vector<std::string>& scripts, bool setFrame, std::int32_t frame) {
  for (const std::string& script : scripts) {
    command({"ExecuteMaxScriptFile", windowsName(script), setFrame ? "true" : "false", std::to_string(frame), "false"});
    for (;;) {
      const Message reply = nextReply();
      if (reply.kind == MessageKind::started) continue;
      if (reply.kind == MessageKind::success) break;
      throw Refused(fmt::format("Script {}: {}", script, reply.text));
    }
  }
}

Message Session::nextReply() {
  for (;;) {
    Message message = readMessage(channel_.receive());
    switch (message.kind) {
      case MessageKind::started:
      case MessageKind::success:
      case MessageKind::error:
        return message;
      default:
        handle(message);
    }
  }
}

void Session::handle(const Message& message) {
  switch (message.kind) {
    case MessageKind::log:
      noteOutputLine(message.text);
      observer_.log(message.text);
      break;
    case MessageKind::warning:
      observer_.warning(message.text);
      break;
    case MessageKind::title:
      observer_.title(message.text);
      break;
    case MessageKind::progress:
      observer_.progress(message.value);
      break;
    case MessageKind::question:
      channel_.send(answerQuestion(job_, message.word, message.text));
      break;
    default:
      throw HostFailure("The plug-in sent a message that is not part of the protocol: " + message.text);
  }
}

// The plug-in tells in its log lines which files it writes.
void Session::noteOutputLine(const std::string& line) {
  if (!current_) return;
  static constexpr std::array<std::string_view, 2> kWritten{"MaxCorvantis: Writing to output file: ",
                                                            "MaxCorvantis: Saved image to "};
  for (const std::string_view prefix : kWritten)
    if (std::string_view(line).starts_with(prefix)) {
      current_->files.push_back(nativeName(line.substr(prefix.size())));
    }
  if (std::string_view(line).starts_with("MaxCorvantis: Skipping frame ")) current_->skipped = true;
}

void Session::command(const std::vector<std::string>& fields) {
  const std::string line = commandLine(fields);
  if (line.size() > kLargestMessage)
    throw Refused(fmt::format("The command {} is {} bytes long; a plug-in takes at most {}", fields.front(),
                              line.size(), kLargestMessage));
  channel_.send(line);
}

}  // namespace worker
