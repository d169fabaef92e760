// The bitmaps that a frame makes and the names that it changes, to be given back when it ends.
//
// The job state lists them beside whatever owns them: a machine fault abandons the frame's stack as it stands, without
// a single destructor, and what is still listed then is given back by the next frame, or by whatever closes the scene.
#pragma once

#include <memory>

#include "hostsdk/bitmap.h"
#include "plugin/job/job_state.h"

namespace corvantis {

// A bitmap of the host with one owner. The job state must outlive it.
struct BitmapRelease {
  JobState* job;
  void operator()(hostsdk::Bitmap* bitmap) const;
};
using OwnedBitmap = std::unique_ptr<hostsdk::Bitmap, BitmapRelease>;

// A new bitmap of the host's manager. Throws std::runtime_error "Failed to allocate " + what +
// ": TheManager->Create() return NULL" when there is none to be had.
OwnedBitmap createBitmap(JobState& job, const hostsdk::BitmapInfo& info, const char* what = "Bitmap");

// Releases what is left of the bitmaps that the elements were rendered into.
void releaseElementRenderBitmaps(JobState& job);
// The same, and the accumulators.
void releaseElementBitmaps(JobState& job);

// Gives the main output and the frame's elements their names of before.
void restoreOutputNames(JobState& job);

// Gives back all that a frame abandoned by a fault still holds; does nothing when none was. Nothing is tried twice: a
// bitmap whose release faults in turn is left to the host.
void clearAbandonedFrame(JobState& job);

}  // namespace corvantis
