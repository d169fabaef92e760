#include "plugin/job/end_job.h"

#include <stdexcept>

#include "plugin/job/frame_hold.h"

namespace corvantis {

void EndJob(JobState& job) {
  if (!job.jobRunning) {
    throw std::runtime_error("EndJob called when consistency check flag jobRunning was not set");
  }
  clearAbandonedFrame(job);
  closeRenderer(job);
  job.hostCore.v8->ResetScene(1);
  job.multipassEffect = nullptr;
  job.jobRunning = false;
}

Trapped<void> trappedEndJob(JobState& job) {
  return trappedCall(job, "Trapped SEH Exception in EndJob(): ", [&] { EndJob(job); });
}

void closeRenderer(JobState& job) {
  if (!job.rendererOpen) return;
  throwIfFaulted(job, trappedCall(job, "Trapped SEH Exception in CloseCurRenderer(): ", [&] {
                   job.hostCore.v8->CloseCurRenderer();
                 }));
  job.rendererOpen = false;
}

}  // namespace corvantis
