#include "plugin/render/frame_cleanup.h"

namespace corvantis {

FrameCleanup::~FrameCleanup() {
  releaseBitmaps();
  restoreNames();
}

void FrameCleanup::releaseBitmaps() {
  if (!mainBitmap) return;
  mainBitmap.reset();
  releaseElementBitmaps(job_);
}

void FrameCleanup::restoreNames() {
  job_.outputInfo.SetName(job_.outputBaseName);
  for (const ElementSceneName& element : elementNames) element.output->info.SetName(element.name);
  elementNames.clear();
}

}  // namespace corvantis
