#include "plugin/job/start_job.h"

#include <stdexcept>

#include "hostsdk/services.h"
#include "plugin/job/default_actions.h"
#include "plugin/job/end_job.h"
#include "plugin/job/render_view.h"
#include "plugin/job/renderer_kind.h"
#include "plugin/job/scene_load.h"
#include "plugin/job/trapped_call.h"
#include "plugin/util/log_file.h"

namespace corvantis {
namespace {

HostCore fetchHostCore() {
  return {hostsdk::GetCOREInterface8(), hostsdk::GetCOREInterface11(), hostsdk::GetCOREInterface14()};
}

void applySceneSettingsAgain(JobState& job) {
  log_file << "setting up gamma settings again, just to ensure they're set" << LogFile::endl;
  applyGammaSettings(job);
  log_file << "setting up default actions again, just to ensure they're set" << LogFile::endl;
  applyDefaultActions(job);
}

}  // namespace

void StartJob(JobState& job, const std::u16string& fileName, const std::u16string& cameraName) {
  job.hostCore = fetchHostCore();
  log_file << "StartJob begin" << LogFile::endl;
  forgetRenderer(job);
  resetJobSettings(job.settings);
  if (job.jobRunning) throw std::runtime_error("StartJob called when job was already running.");

  log_file << "setting up gamma settings" << LogFile::endl;
  applyGammaSettings(job);
  log_file << "setting up default actions" << LogFile::endl;
  applyDefaultActions(job);
  usePathConfiguration(job.settings);

  closeRenderer(job);  // a frame rendered outside any job may have left it open for the scene that goes now
  loadScene(job, fileName);
  applySceneSettingsAgain(job);
  chooseRenderView(job, cameraName);
  recogniseRenderer(job);
  job.jobRunning = true;
}

void trappedStartJob(JobState& job, const std::u16string& fileName, const std::u16string& cameraName,
                     std::string& sehText) {
  trappedCall(job, "Trapped SEH Exception in StartJob(): ", sehText, [&] { StartJob(job, fileName, cameraName); });
}

void applyGammaSettings(const JobState& job) {
  if (!job.settings.gammaCorrection) return;
  hostsdk::GammaMgr& gamma = hostsdk::gammaMgr();
  gamma.Enable(1);
  gamma.SetFileInGamma(job.settings.gammaIn);
  gamma.SetFileOutGamma(job.settings.gammaOut);
}

}  // namespace corvantis
