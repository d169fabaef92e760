// What every frame puts back in order, however it ends.
#pragma once

#include <vector>

#include "plugin/job/job_state.h"
#include "plugin/render/owned_bitmap.h"
#include "plugin/render/render_elements.h"

namespace corvantis {

// Owns the frame's main bitmap and, through the job state, the elements' bitmaps and the names that the frame changes.
// Both steps may be done early; the destructor does what is left. Without a main bitmap there are none of the elements.
class FrameCleanup {
 public:
  explicit FrameCleanup(JobState& job) : job_(job) {}
  ~FrameCleanup();
  FrameCleanup(const FrameCleanup&) = delete;
  FrameCleanup& operator=(const FrameCleanup&) = delete;

  void releaseBitmaps();
  void restoreNames();

  OwnedBitmap mainBitmap;
  std::vector<ElementSceneName> elementNames;

 private:
  JobState& job_;
};

}  // namespace corvantis
