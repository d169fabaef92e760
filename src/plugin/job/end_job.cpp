#include "plugin/job/end_job.h"

#include <stdexcept>

#include "plugin/job/trapped_call.h"

namespace corvantis {

void EndJob(JobState& job) {
  if (!job.jobRunning) {
    throw std::runtime_error("EndJob called when consistency check flag jobRunning was not set");
  }
  closeRenderer(job);
  job.hostCore.v8->ResetScene(1);
  job.multipassEffect = nullptr;
  job.jobRunning = false;
}

void trappedEndJob(JobState& job, std::string& sehText) {
  trappedCall(job, "Trapped SEH Exception in EndJob(): ", sehText, [&] { EndJob(job); });
}

void closeRenderer(JobState& job) {
  if (!job.rendererOpen) return;
  std::string sehText;
  trappedCloseCurRenderer(job, sehText);
  if (!sehText.empty()) throw std::runtime_error(sehText + "\n" + job.crashDescription);
  job.rendererOpen = false;
}

void trappedCloseCurRenderer(JobState& job, std::string& sehText) {
  trappedCall(job, "Trapped SEH Exception in CloseCurRenderer(): ", sehText,
              [&] { job.hostCore.v8->CloseCurRenderer(); });
}

}  // namespace corvantis
