// The commands that run scripts.
#include <limits>

#include "hostsdk/core_interface.h"
#include "plugin/daemon/commands.h"
#include "plugin/interface/mxs/run_script.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

using Kind = hostsdk::Value::Kind;

struct FileRun {
  std::u16string file;
  std::optional<hostsdk::TimeValue> time;  // in ticks, when the frame is to be set
  std::int32_t frame = 0;
  bool returnText = false;
};

std::optional<bool> flagIn(std::u16string parameter) {
  for (char16_t& c : parameter)
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
  if (parameter == u"true") return true;
  if (parameter == u"false") return false;
  return std::nullopt;
}

std::optional<hostsdk::TimeValue> timeOf(std::int32_t frame) {
  const std::int64_t ticks = std::int64_t{frame} * hostsdk::GetTicksPerFrame();
  if (ticks < std::numeric_limits<hostsdk::TimeValue>::min() || ticks > std::numeric_limits<hostsdk::TimeValue>::max())
    return std::nullopt;
  return static_cast<hostsdk::TimeValue>(ticks);
}

// nullopt after an error reply.
std::optional<FileRun> readFileRun(const CommandCall& call) {
  const auto refuse = [&](const std::u16string& text) {
    replyError(call, text);
    return std::nullopt;
  };
  FileRun run;
  run.file = call.parameters[0];
  const std::optional<bool> setFrame = flagIn(call.parameters[1]);
  if (!setFrame)
    return refuse(
        u"Parameter 1 specifies whether or not to set the current frame. It must be 'true' or 'false'. "
        u"Value received was: '" +
        call.parameters[1] + u"'.");
  const std::optional<std::int32_t> frame = integerIn(call.parameters[2]);
  if (!frame)
    return refuse(
        u"Parameter 2 specifies the current frame (it is ignored if parameter 1 is false). This value must "
        u"be an integer. Value received was: '" +
        call.parameters[2] + u"'.");
  run.frame = *frame;
  const std::optional<bool> returnText = flagIn(call.parameters[3]);
  if (!returnText)
    return refuse(
        u"Parameter 1 specifies whether or not to return the value of the MaxScript execution as a string. "
        u"It must be 'true' or 'false'. Value received was: '" +
        call.parameters[3] + u"'.");
  run.returnText = *returnText;
  if (*setFrame && !(run.time = timeOf(run.frame)))
    return refuse(u"Frame " + to_wstring(run.frame) + u" is outside the range of scene times.");
  return run;
}

void setFrame(JobState& job, const FileRun& run) {
  hostsdk::Interface8& core = *hostsdk::GetCOREInterface8();
  constexpr bool redraw = true;
  job.currentFrame = run.frame;
  core.SetTime(*run.time, redraw);
  log_file << "Set Time to " << job.currentFrame << LogFile::endl;
  log_file << "GetTime(): " << core.GetTime() << LogFile::endl;
}

void replySuccessOf(const CommandCall& call, hostsdk::Value& value) {
  if (value.kind() == Kind::ok || (value.kind() == Kind::boolean && value.isTrue()))
    return sendReply(call.connection, protocol::kSuccess);
  const std::u16string failed = u"Script did not return success. Returned value was";
  if (value.kind() == Kind::boolean) return replyError(call, failed + u" false.");
  replyError(call, failed + u": " + mxs::textOf(value) + u".");
}

void replyTextOf(const CommandCall& call, hostsdk::Value& value) {
  if (value.kind() == Kind::string) return sendReply(call.connection, protocol::kSuccessWith, mxs::textOf(value));
  replyError(call, u"Requested a return string, but the script did not return a string. Value received was: " +
                       mxs::textOf(value) + u"'.");
}

}  // namespace

void executeMaxScriptFile(const CommandCall& call) {
  sendReply(call.connection, protocol::kStarted);
  const std::optional<FileRun> run = readFileRun(call);
  if (!run) return;
  if (run->time) setFrame(call.job, *run);
  log_file << "Executing script " << run->file << LogFile::endl;
  hostsdk::Value* value = mxs::file_in(run->file);
  log_file << "Done Executing script " << run->file << LogFile::endl;
  if (run->returnText)
    replyTextOf(call, *value);
  else
    replySuccessOf(call, *value);
}

void executeStringScript(const CommandCall& call) {
  const std::optional<std::int32_t> frame = integerIn(call.parameters[0]);
  if (!frame)
    return sendReply(call.connection, protocol::kError,
                     u"ExecuteScript: " + invalidParameter(call, 0, u"a valid frame number", BeforeComma::blank));
  call.job.currentFrame = *frame;
  sendReply(call.connection, protocol::kStarted);
  log_file << "Executing script... " << LogFile::endl;
  mxs::executeScriptString script(call.parameters[1]);
  hostsdk::Value* value = script.run();
  log_file << "... Done Executing script " << LogFile::endl;
  if (value->kind() == Kind::string) return sendReply(call.connection, protocol::kSuccessWith, mxs::textOf(*value));
  sendReply(call.connection, protocol::kError, u"Script did not return a string: " + mxs::textOf(*value));
}

}  // namespace corvantis
