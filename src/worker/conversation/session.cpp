#include "worker/conversation/session.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>

#include "protocol/framing.h"
#include "protocol/words.h"
#include "worker/conversation/answers.h"
#include "worker/job/paths.h"

namespace worker {
namespace {

namespace command = protocol::command;
namespace notice = protocol::notice;

// A command that cannot be carried out is answered by an error that begins with its word.
bool refuses(const Message& error, std::string_view word) { return error.text.starts_with(fmt::format("{}: ", word)); }

}  // namespace

// The job cannot go on, though the host can be talked to.
class Session::Refused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

Session::Session(const Job& job, Connection& connection, JobObserver& observer, std::function<double()> now)
    : job_(job), connection_(connection), observer_(observer), now_(std::move(now)) {}

JobResult Session::run() {
  try {
    handshake();
    observer_.jobStarted(job_, result_.pluginVersion);
    sendSettings(true);
    startJob();
    sendSettings(false);
    runScripts(job_.preJobScripts, false, 0);
    for (std::size_t i = 0; i < job_.frames.size(); ++i) {
      connection_.betweenFrames();
      renderFrame(i);
      if (job_.stopOnError && !result_.frames.back().rendered) break;
    }
    connection_.betweenFrames();
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
  connection_.send(std::string(protocol::kStartup));
  const std::string identification = connection_.receive();
  if (!identification.starts_with(protocol::kIdentification))
    throw HostFailure(fmt::format("Expected \"{}\" and a version from the plug-in, got \"{}\"",
                                  protocol::kIdentification, identification));
  result_.pluginVersion = identification.substr(protocol::kIdentification.size());
}

void Session::sendSettings(bool beforeStart) {
  for (const auto& setting : job_.settings)
    if (command::precedesStartJob(setting.front()) == beforeStart) send(setting);
  if (beforeStart) {
    if (!job_.localFolder.empty()) send(command::kTempFolder, {windowsName(job_.localFolder)});
    return;
  }
  if (!job_.localFolder.empty()) send(command::kLocalRendering);
  if (!job_.output.empty()) send(command::kOutputImageFilename, {windowsName(job_.output)});
  if (!job_.output.empty()) send(command::kOverrideSaveFile, {"1"});
  if (!job_.jpegFolder.empty()) send(command::kUseJpegOutput, {windowsName(job_.jpegFolder)});
}

void Session::startJob() {
  send(command::kStartJob, {windowsName(job_.scene), job_.camera});
  std::string errors;
  for (;;) {
    const Message reply = nextReply();
    if (reply.kind == MessageKind::success) break;
    if (reply.kind != MessageKind::error) throw HostFailure("Unexpected reply to StartJob: " + reply.text);
    errors += (errors.empty() ? "" : "\n") + reply.text;
    // A line that cannot be run is answered by its error alone.
    if (refuses(reply, command::kStartJob)) throw Refused(errors);
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
    send(command::kCurrentTask, {std::to_string(index)});
    runScripts(job_.perFrameScripts, true, frame.frame);
    send(command::kRenderTask, {std::to_string(frame.frame)});
    for (bool started = false;;) {
      const Message reply = nextReply();
      if (reply.kind == MessageKind::started) {
        started = true;
      } else if (reply.kind == MessageKind::success && started) {
        frame.rendered = frame.errors.empty();
        break;
      } else if (reply.kind == MessageKind::error) {
        // Before STARTED an error that is not RenderTask's own answers one of the settings.
        if (!started && !refuses(reply, command::kRenderTask)) throw Refused(reply.text);
        if (reply.text != protocol::kNotSaved || frame.errors.empty()) frame.errors.push_back(reply.text);
        if (!started || reply.text == protocol::kNotSaved) break;
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
  send(command::kEndJob);
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
    send(command::kExecuteMaxScriptFile,
         {windowsName(script), setFrame ? "true" : "false", std::to_string(frame), "false"});
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
    Message message = readMessage(connection_.receive());
    switch (message.kind) {
      case MessageKind::started:
      case MessageKind::success:
      case MessageKind::error:
        return message;
      case MessageKind::log:
      case MessageKind::warning:
      case MessageKind::title:
      case MessageKind::progress:
      case MessageKind::question:
      case MessageKind::unknownNotice:
      case MessageKind::unknown:
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
      connection_.send(answerQuestion(job_, message.word, message.text));
      break;
    case MessageKind::unknownNotice:
      observer_.warning("The plug-in sent a notice that this worker does not know: " + message.text);
      break;
    case MessageKind::started:  // replies, which are not handed in
    case MessageKind::success:
    case MessageKind::error:
    case MessageKind::unknown:
      throw HostFailure("The plug-in sent a message that is not part of the protocol: " + message.text);
  }
}

// The plug-in tells in its log lines which files it writes.
void Session::noteOutputLine(const std::string& line) {
  if (!current_) return;
  std::string_view text = line;
  if (!text.starts_with(notice::kOwn)) return;
  text.remove_prefix(notice::kOwn.size());
  for (const std::string_view beginning : {notice::kWriting, notice::kMoved})
    if (text.starts_with(beginning)) current_->files.push_back(nativeName(std::string(text.substr(beginning.size()))));
  if (text.starts_with(notice::kSkipping)) current_->skipped = true;
}

void Session::send(std::string_view word, const std::vector<std::string>& parameters) {
  std::vector<std::string> fields{std::string(word)};
  fields.insert(fields.end(), parameters.begin(), parameters.end());
  send(fields);
}

void Session::send(const std::vector<std::string>& fields) {
  const std::string line = commandLine(fields);
  if (line.size() > protocol::kLargestMessage)
    throw Refused(fmt::format("The command {} is {} bytes long; a plug-in takes at most {}", fields.front(),
                              line.size(), protocol::kLargestMessage));
  connection_.send(line);
}

}  // namespace worker
