// The commands that control a job.
#include <exception>
#include <utility>

#include "platform/clock.h"
#include "plugin/daemon/commands.h"
#include "plugin/job/end_job.h"
#include "plugin/job/start_job.h"
#include "plugin/render/render_frame.h"
#include "plugin/util/log_file.h"
#include "plugin/util/paths.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

constexpr std::uint32_t kPauseAfterRenderErrorMs = 500;

// The one parameter as a number; nullopt after an error reply.
std::optional<std::int32_t> numberIn(const CommandCall& call, const char16_t* what) {
  const std::optional<std::int32_t> number = integerIn(call.parameters[0]);
  if (!number) replyError(call, invalidParameter(call, 0, what, BeforeComma::blank));
  return number;
}

void replyRenderError(const CommandCall& call, const std::string& text) {
  sendReply(call.connection, protocol::kError, text);
  platform::clock().sleep(kPauseAfterRenderErrorMs);
}

void replyJobError(const CommandCall& call, const std::string& text) {
  log_file << "Sending error" << LogFile::endl;
  sendReply(call.connection, protocol::kError, text);
}

// Runs a trapped call and reports its failure, an exception or a fault. Gives whether it came through.
template <class TrappedCall>
bool runReported(const CommandCall& call, void (*report)(const CommandCall& call, const std::string& text),
                 TrappedCall&& trappedCall) {
  TrapOutcome outcome;
  try {
    outcome = trappedCall();
  } catch (const std::exception& error) {
    report(call, error.what());
    return false;
  }
  const bool faulted = outcome.faulted();
  if (faulted) report(call, faultText(call.job, std::move(outcome)));
  return !faulted;
}

void noteScenePath(JobState& job, const std::u16string& scene) {
  ScenePath path = splitScenePath(replace_all(scene, u"/", u"\\"));
  job.sceneFileName = std::move(path.fileName);
  job.sceneFilePath = std::move(path.folder);
}

}  // namespace

void renderTask(const CommandCall& call) {
  const std::optional<std::int32_t> frame = numberIn(call, u"a valid frame number");
  if (!frame) return;
  call.job.currentFrame = *frame;
  if (!call.job.jobRunning) return replyError(call, u"Called without being in a job.");
  sendReply(call.connection, protocol::kStarted);
  if (runReported(call, replyRenderError, [&] { return trappedRenderFrame(call.job, *frame, call.connection); }))
    sendReply(call.connection, protocol::kSuccess);
  else
    sendReply(call.connection, protocol::kError, std::string(protocol::kNotSaved));
}

void currentTask(const CommandCall& call) {
  const std::optional<std::int32_t> task = numberIn(call, u"a valid task number");
  if (!task) return;
  call.job.currentTask = *task;
}

void startJob(const CommandCall& call) {
  runReported(call, replyJobError, [&] {
    noteScenePath(call.job, call.parameters[0]);
    return trappedStartJob(call.job, call.parameters[0], call.parameters[1]);
  });
  log_file << "Sending success" << LogFile::endl;
  sendReply(call.connection, protocol::kSceneLoaded);
}

void endJob(const CommandCall& call) {
  runReported(call, replyJobError, [&] { return trappedEndJob(call.job); });
  sendReply(call.connection, protocol::kSuccess);
}

void ignoreContinue(const CommandCall&) { log_file << "Warning: ignoring CONTINUE statement" << LogFile::endl; }

}  // namespace corvantis
