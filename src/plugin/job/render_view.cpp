#include "plugin/job/render_view.h"

#include <stdexcept>

#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

void useLockedViewport(JobState& job) {
  job.lockedViewportIndex = job.hostCore.v14->LockedViewportIndex();
  log_file << "Viewport " << job.lockedViewportIndex << " is locked" << LogFile::endl;
  job.renderViewport = job.hostCore.v8->Viewport(job.lockedViewportIndex);
  log_file << "Got the locked viewport: " << static_cast<const void*>(job.renderViewport) << LogFile::endl;
}

void useActiveViewport(JobState& job, const std::u16string& cameraName) {
  job.renderViewport = job.hostCore.v8->ActiveViewport();
  log_file << "Got the active viewport: " << static_cast<const void*>(job.renderViewport) << LogFile::endl;
  if (cameraName.empty()) return;
  job.renderCamera = job.hostCore.v8->NodeByName(cameraName);
  if (!job.renderCamera) {
    throw std::runtime_error("Scene does not contain render camera \"" + to_string(cameraName) + "\"");
  }
}

void useCameraOfViewport(JobState& job) {
  job.renderCamera = job.renderViewport ? job.renderViewport->ViewCamera() : nullptr;
  if (job.renderCamera) {
    log_file << "Rendering viewport with camera: " << job.renderCamera->Name() << LogFile::endl;
  } else {
    log_file << "Viewport is not a camera, so its current view will be rendered" << LogFile::endl;
  }
}

}  // namespace

void chooseRenderView(JobState& job, const std::u16string& cameraName) {
  job.renderCamera = nullptr;
  job.renderViewLocked = job.hostCore.v11->RenderUsesActiveViewport() == 0;
  if (job.renderViewLocked) {
    useLockedViewport(job);
  } else {
    useActiveViewport(job, cameraName);
  }
  if (!job.renderCamera) useCameraOfViewport(job);
}

}  // namespace corvantis
