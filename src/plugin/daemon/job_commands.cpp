#include "plugin/daemon/job_commands.h"

#include <exception>

#include "platform/clock.h"
#include "plugin/daemon/reply.h"
#include "plugin/job/end_job.h"
#include "plugin/job/start_job.h"
#include "plugin/render/render_frame.h"
#include "plugin/util/log_file.h"
#include "plugin/util/paths.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

constexpr std::uint32_t kPauseAfterRenderErrorMs = 500;
constexpr std::uint16_t kRendered = 0, kNotRendered = 1;

void replyNotANumber(const CommandCall& call, const char16_t* what) {
  sendReply(call.socket, u"ERROR: " + std::u16string(call.word) + u": Parameter 1 , \"" + call.parameters[0] +
                             u"\", is not a valid " + what + u" number.");
}

std::string faultReport(const JobState& jobState, const TrapOutcome& outcome) {
  return "ERROR: " + faultText(jobState, outcome);
}

void replyRenderError(const CommandCall& call, const std::string& report) {
  sendReply(call.socket, report);
  platform::clock().sleep(kPauseAfterRenderErrorMs);
}

std::uint16_t renderAndReport(const CommandCall& call, std::int32_t frame) {
  Trapped<std::uint16_t> outcome{{}, kNotRendered};
  try {
    outcome = trappedRenderFrame(call.jobState, frame, call.socket);
  } catch (const std::exception& error) {
    replyRenderError(call, std::string("ERROR: ") + error.what());
  }
  if (outcome.faulted()) replyRenderError(call, faultReport(call.jobState, outcome));
  return outcome.value;
}

void replyJobError(const CommandCall& call, const std::string& report) {
  log_file << "Sending error" << LogFile::endl;
  sendReply(call.socket, report);
}

void noteScenePath(JobState& jobState, const std::u16string& scene) {
  ScenePath path = splitScenePath(replace_all(scene, u"/", u"\\"));
  jobState.sceneFileName = std::move(path.fileName);
  jobState.sceneFilePath = std::move(path.folder);
}

}  // namespace

void renderTask(const CommandCall& call) {
  const std::optional<std::int32_t> frame = integerIn(call.parameters[0]);
  if (!frame) return replyNotANumber(call, u"frame");
  call.jobState.currentFrame = *frame;
  if (!call.jobState.jobRunning)
    return sendReply(call.socket, std::u16string(u"ERROR: RenderTask: Called without being in a job."));
  sendReply(call.socket, std::u16string(u"STARTED"));
  const bool rendered = renderAndReport(call, *frame) == kRendered;
  sendReply(call.socket, std::u16string(rendered ? u"SUCCESS" : u"ERROR: Failed to save file."));
}

void currentTask(const CommandCall& call) {
  const std::optional<std::int32_t> task = integerIn(call.parameters[0]);
  if (!task) return replyNotANumber(call, u"task");
  call.jobState.currentTask = *task;
}

void startJob(const CommandCall& call) {
  Trapped<void> outcome;
  try {
    noteScenePath(call.jobState, call.parameters[0]);
    outcome = trappedStartJob(call.jobState, call.parameters[0], call.parameters[1]);
  } catch (const std::exception& error) {
    replyJobError(call, std::string("ERROR: ") + error.what());
  }
  if (outcome.faulted()) replyJobError(call, faultReport(call.jobState, outcome));
  log_file << "Sending success" << LogFile::endl;
  sendReply(call.socket, std::u16string(u"SUCCESS Scene loaded successfully"));
}

void endJob(const CommandCall& call) {
  Trapped<void> outcome;
  try {
    outcome = trappedEndJob(call.jobState);
  } catch (const std::exception& error) {
    replyJobError(call, std::string("ERROR: ") + error.what());
  }
  if (outcome.faulted()) replyJobError(call, faultReport(call.jobState, outcome));
  sendReply(call.socket, std::u16string(u"SUCCESS"));
}

void ignoreContinue(const CommandCall&) { log_file << "Warning: ignoring CONTINUE statement" << LogFile::endl; }

}  // namespace corvantis
