#include "plugin/render/frame_passes.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "plugin/daemon/requests/requests.h"
#include "plugin/job/frame_hold.h"
#include "plugin/job/trapped_call.h"
#include "plugin/render/region_output.h"
#include "plugin/render/render_callback.h"
#include "plugin/render/render_elements.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

// A frame-buffer window shows what is being rendered; renderer A has its own.
bool showsFrameBuffer(const JobState& job) { return !job.isRendererA && job.settings.showFrameBuffer; }

void showFrameBuffer(hostsdk::Bitmap& bitmap) {
  bitmap.Display(nullptr, hostsdk::kDisplayPosition, false, true, nullptr, nullptr);
}

// One call of the renderer; whether it succeeded. `view` may be null: the camera's or viewport's own. `indent` begins
// the line that tells the worker.
bool callRenderer(JobState& job, hostsdk::TimeValue time, hostsdk::Bitmap& bitmap, CorvantisRenderCallback& callback,
                  hostsdk::ViewParams* view, const std::u16string& indent, win32::simple_socket& connection) {
  constexpr float kFrameDuration = 1.0F;
  const std::optional<hostsdk::Rect> region = regionToRender(job.settings);
  const Trapped<int> result = trappedCall(job, "Trapped SEH Exception in CurRendererRenderFrame(): ", 0, [&] {
    return job.hostCore.v8->CurRendererRenderFrame(time, &bitmap, &callback, kFrameDuration, view,
                                                   region ? &*region : nullptr);
  });
  const bool succeeded = result.value != 0;
  sendStdoutLine(connection, indent + u"CallCurRendererRenderFrame returned code " + to_wstring(succeeded));
  throwIfFaulted(job, result);
  return succeeded;
}

void renderWhole(JobState& job, hostsdk::TimeValue time, hostsdk::Bitmap& image, win32::simple_socket& connection) {
  CorvantisRenderCallback callback(connection, u"");
  callback.isRendererB = job.isRendererB;
  const bool shown = showsFrameBuffer(job);
  if (shown) showFrameBuffer(image);
  if (!callRenderer(job, time, image, callback, nullptr, u"", connection)) {
    throw std::runtime_error("Failed to render the frame.");
  }
  if (shown) image.UnDisplay();
}

[[noreturn]] void failPass(JobState& job, std::int32_t pass, OwnedBitmap& passImage, win32::simple_socket& connection) {
  passImage.reset();
  releaseElementRenderBitmaps(job);
  sendStdoutLine(connection, u"  Failure");
  throw std::runtime_error("Failed to render the frame for pass " + to_string(pass + 1) + " of " +
                           to_string(job.passCount));
}

// Renders pass `pass` (from 0); gives its time, which the effect chooses.
hostsdk::TimeValue renderPass(JobState& job, std::int32_t pass, hostsdk::TimeValue frameTime, OwnedBitmap& passImage,
                              win32::simple_socket& connection) {
  if (showsFrameBuffer(job)) showFrameBuffer(*passImage);
  CorvantisRenderCallback callback(connection, u"");
  callback.isRendererB = job.isRendererB;
  sendStdoutLine(connection, u"  Rendering pass " + to_wstring(pass + 1) + u" of " + to_wstring(job.passCount));
  callback.setPass(pass + 1, job.passCount);

  hostsdk::TimeValue passTime = frameTime;
  hostsdk::ViewParams* view = job.multipassEffect->SetupPass(job.renderCamera, job.renderCameraObject, pass, passTime);
  if (!callRenderer(job, passTime, *passImage, callback, view, u"  ", connection)) {
    failPass(job, pass, passImage, connection);
  }
  return passTime;
}

void accumulatePass(JobState& job, std::int32_t pass, hostsdk::TimeValue passTime, hostsdk::Bitmap& image,
                    hostsdk::Bitmap& passImage, win32::simple_socket& connection) {
  sendStdoutLine(connection, u"  Accumulating bitmap");
  job.multipassEffect->AccumulateBitmap(&image, &passImage, pass, passTime);
  accumulateRenderElements(job, pass, passTime, connection);
  sendStdoutLine(connection, u"  Success");
}

void renderMultipass(JobState& job, hostsdk::TimeValue time, hostsdk::Bitmap& image, win32::simple_socket& connection) {
  sendStdoutLine(connection, u"Rendering multipass effect:");
  OwnedBitmap passImage = createBitmap(job, job.outputInfo);
  for (std::int32_t pass = 0; pass < job.passCount; ++pass) {
    const hostsdk::TimeValue passTime = renderPass(job, pass, time, passImage, connection);
    accumulatePass(job, pass, passTime, image, *passImage, connection);
  }
  if (showsFrameBuffer(job)) passImage->UnDisplay();
  passImage.reset();
  job.multipassEffect->Finish();
}

}  // namespace

void renderPasses(JobState& job, hostsdk::TimeValue time, hostsdk::Bitmap& image, win32::simple_socket& connection) {
  if (job.multipassEnabled) {
    renderMultipass(job, time, image, connection);
  } else {
    renderWhole(job, time, image, connection);
  }
}

}  // namespace corvantis
