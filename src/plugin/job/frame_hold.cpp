#include "plugin/job/frame_hold.h"

#include <stdexcept>
#include <string>
#include <utility>

#include "hostsdk/services.h"

namespace corvantis {
namespace {

void release(hostsdk::Bitmap*& bitmap) {
  if (hostsdk::Bitmap* released = std::exchange(bitmap, nullptr)) released->DeleteThis();
}

void releaseAll(std::vector<hostsdk::Bitmap*>& bitmaps) {
  for (hostsdk::Bitmap*& bitmap : bitmaps) release(bitmap);
  bitmaps.clear();
}

}  // namespace

void BitmapRelease::operator()(hostsdk::Bitmap* bitmap) const {
  if (std::erase(job->frameBitmaps, bitmap) != 0) bitmap->DeleteThis();
}

OwnedBitmap createBitmap(JobState& job, const hostsdk::BitmapInfo& info, const char* what) {
  hostsdk::Bitmap* bitmap = hostsdk::TheManager()->Create(info);
  if (!bitmap) {
    throw std::runtime_error(std::string("Failed to allocate ") + what + ": TheManager->Create() return NULL");
  }
  job.frameBitmaps.push_back(bitmap);
  return OwnedBitmap(bitmap, BitmapRelease{&job});
}

void releaseElementRenderBitmaps(JobState& job) {
  for (const FrameElement& element : job.frameElements) release(element.output->bitmap);
}

void releaseElementBitmaps(JobState& job) {
  releaseElementRenderBitmaps(job);
  releaseAll(job.elementAccumulators);
}

void restoreOutputNames(JobState& job) {
  job.outputInfo.SetName(job.outputBaseName);
  for (const FrameElement& element : job.frameElements) element.output->info.SetName(element.sceneName);
  job.frameElements.clear();
}

void clearAbandonedFrame(JobState& job) {
  if (!job.frameAbandoned) return;
  releaseAll(job.frameBitmaps);
  releaseElementBitmaps(job);
  restoreOutputNames(job);
  job.frameAbandoned = false;
}

}  // namespace corvantis
