#include "plugin/render/render_frame.h"

#include <stdexcept>

#include "plugin/daemon/requests/requests.h"
#include "plugin/job/default_actions.h"
#include "plugin/job/end_job.h"
#include "plugin/job/frame_hold.h"
#include "plugin/render/black_frame.h"
#include "plugin/render/frame_passes.h"
#include "plugin/render/output_files.h"
#include "plugin/render/output_image.h"
#include "plugin/render/region_output.h"
#include "plugin/render/render_elements.h"
#include "plugin/render/renderer_setup.h"
#include "plugin/util/files.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

// What every frame puts back in order, however it ends short of a fault: may be done early, the destructor does what is
// left.
class FrameCleanup {
 public:
  explicit FrameCleanup(JobState& job) : job_(job) {}
  ~FrameCleanup() { run(); }
  FrameCleanup(const FrameCleanup&) = delete;
  FrameCleanup& operator=(const FrameCleanup&) = delete;

  void run() {
    mainBitmap.reset();
    releaseElementBitmaps(job_);
    restoreOutputNames(job_);
  }

  OwnedBitmap mainBitmap;

 private:
  JobState& job_;
};

// Outside a job nodes and viewports of the last one may be gone with its scene.
void forgetViewOfEndedJob(JobState& job) {
  if (job.jobRunning) return;
  job.renderCamera = nullptr;
  job.renderViewport = nullptr;
}

hostsdk::TimeValue setSceneTime(JobState& job, std::int32_t frame) {
  const hostsdk::TimeValue time = frameTime(frame, hostsdk::GetTicksPerFrame());
  job.hostCore.v8->SetTime(time, true);
  return time;
}

void overrideSaveFileOption(JobState& job, win32::simple_socket& connection) {
  if (!job.settings.overrideSaveFile) return;
  const bool save = job.settings.overrideSaveFileValue;
  sendStdoutLine(connection, u"Overriding save file option to " + to_wstring(save));
  job.hostCore.v8->SetRenderSaveFile(save);
}

void readSceneOutputs(JobState& job) {
  job.outputInfo = job.hostCore.v8->RenderOutput();
  prepareOutputInfo(job, job.outputInfo);
  job.outputBaseName = job.hostCore.v8->RenderSaveFile() ? job.outputInfo.Name() : temporaryOutputName();
  enumerateRenderElements(job);
}

void nameMainOutput(JobState& job, std::int32_t frame) {
  const JobSettings& settings = job.settings;
  const std::u16string& base = settings.useOutputImageFilename ? settings.outputImageFilename : job.outputBaseName;
  job.outputInfo.SetName(frameOutputName(settings, base, frame));
}

bool skipsExisting(const JobState& job, win32::simple_socket& connection) {
  const std::u16string& name = job.outputInfo.Name();
  if (!job.hostCore.v8->RenderSkipExisting() || !file_exists(name)) return false;
  sendStdoutLine(connection, protocol::notice::kSkipping, u"\"" + name + u"\" because it already exists");
  return true;
}

OwnedBitmap createMainBitmap(JobState& job) {
  OwnedBitmap bitmap = createBitmap(job, job.outputInfo);
  bitmap->PrepareGChannels(job.outputInfo);
  log_file << "Bitmap " << static_cast<const void*>(bitmap.get()) << LogFile::endl;
  return bitmap;
}

void requireRunningJob(const JobState& job) {
  if (!job.jobRunning) {
    throw std::runtime_error("RenderFrame called when consistency check flag jobRunning was not set");
  }
}

void checkOutputPaths(JobState& job, win32::simple_socket& connection) {
  sendStdoutLine(connection, u"Checking output paths");
  if (job.hostCore.v8->RenderSaveFile()) {
    createOutputPath(job.outputInfo, connection);
    if (job.settings.useJpegOutput) checkJpegFolder(job, connection);
  }
  if (job.settings.saveRenderElements) createElementOutputPaths(job, connection);
}

void checkMainImage(const JobState& job, hostsdk::Bitmap& image, win32::simple_socket& connection) {
  if (!job.settings.failOnBlackFrames) return;
  sendStdoutLine(connection, u"Checking if " + job.outputInfo.Name() + u" is black");
  checkBlackFrame(job, image, connection);
}

void saveMainOutput(JobState& job, hostsdk::Bitmap& image, win32::simple_socket& connection) {
  if (!job.hostCore.v8->RenderSaveFile()) return;
  if (rendererHasRequirement(job, hostsdk::kRequirementSavesOutput)) return;
  if (job.settings.regionRendering) {
    writeRegionOutput(job, image, job.outputInfo, connection);
    return;
  }
  writeOutput(job, image, job.outputInfo, connection);
  if (job.settings.useJpegOutput) tryWriteJpegOutput(job, image, job.outputInfo, connection);
}

// The next frame opens the renderer again and reads the scene's elements anew.
void closeForRestart(JobState& job) {
  job.renderElements.clear();
  job.elementOutputs.clear();
  job.renderElementCount = 0;
  closeRenderer(job);
}

}  // namespace

std::uint16_t RenderFrame(JobState& job, std::int32_t frame, win32::simple_socket& connection) {
  if (!job.hostCore.v8) job.hostCore = fetchHostCore();
  clearAbandonedFrame(job);
  forgetViewOfEndedJob(job);
  sendStdoutLine(connection, u"Render frame " + to_wstring(frame));
  const hostsdk::TimeValue time = setSceneTime(job, frame);
  job.savedOutputFiles.clear();
  overrideSaveFileOption(job, connection);
  if (!job.rendererOpen) readSceneOutputs(job);
  applyRegionSize(job);

  FrameCleanup cleanup(job);
  nameMainOutput(job, frame);
  if (skipsExisting(job, connection)) return 0;
  sendStdoutLine(connection, u"Rendering frame \"" + job.outputInfo.Name() + u"\"");
  cleanup.mainBitmap = createMainBitmap(job);
  nameRenderElements(job, frame);
  sendStdoutLine(connection, u"Rendering " + to_wstring(job.renderElementCount) + u" render elements");
  setupRenderer(job, frame, connection);
  if (job.multipassEnabled) createElementAccumulators(job);
  requireRunningJob(job);

  checkOutputPaths(job, connection);
  reportDefaultActions(job, connection);
  sendStdoutLine(connection, u"Calling renderer");
  renderPasses(job, time, *cleanup.mainBitmap, connection);
  sendStdoutLine(connection, u"Render done");
  checkMainImage(job, *cleanup.mainBitmap, connection);
  saveMainOutput(job, *cleanup.mainBitmap, connection);
  if (job.settings.saveRenderElements) saveRenderElements(job, connection);

  cleanup.run();
  if (job.settings.restartRendererMode) closeForRestart(job);
  return 0;
}

Trapped<std::uint16_t> trappedRenderFrame(JobState& job, std::int32_t frame, win32::simple_socket& connection) {
  auto outcome = trappedCall(job, "Trapped SEH Exception in RenderFrame(): ", std::uint16_t{1},
                             [&] { return RenderFrame(job, frame, connection); });
  if (outcome.faulted()) job.frameAbandoned = true;
  return outcome;
}

}  // namespace corvantis
