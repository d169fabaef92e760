#include <cstdint>
#include <stdexcept>
#include <string>

#include "plugin/daemon/requests/requests.h"
#include "plugin/render/frame_passes.h"
#include "plugin/render/owned_bitmap.h"
#include "plugin/render/render_callback.h"
#include "plugin/render/render_elements.h"
#include "plugin/render/renderer_call.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

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
  const RendererResult result = trappedCurRendererRenderFrame(job, passTime, *passImage, callback, view);
  sendStdoutLine(connection, u"  CallCurRendererRenderFrame returned code " + codeText(result));
  throwIfFaulted(job, result);
  if (result.code == 0) failPass(job, pass, passImage, connection);
  return passTime;
}

void accumulatePass(JobState& job, std::int32_t pass, hostsdk::TimeValue passTime, hostsdk::Bitmap& image,
                    hostsdk::Bitmap& passImage, win32::simple_socket& connection) {
  sendStdoutLine(connection, u"  Accumulating bitmap");
  job.multipassEffect->AccumulateBitmap(&image, &passImage, pass, passTime);
  accumulateRenderElements(job, pass, passTime, connection);
  sendStdoutLine(connection, u"  Success");
}

}  // namespace

void renderMultipass(JobState& job, hostsdk::TimeValue time, hostsdk::Bitmap& image, win32::simple_socket& connection) {
  sendStdoutLine(connection, u"Rendering multipass effect:");
  OwnedBitmap passImage = createBitmap(job.outputInfo);
  for (std::int32_t pass = 0; pass < job.passCount; ++pass) {
    const hostsdk::TimeValue passTime = renderPass(job, pass, time, passImage, connection);
    accumulatePass(job, pass, passTime, image, *passImage, connection);
  }
  if (showsFrameBuffer(job)) passImage->UnDisplay();
  passImage.reset();
  job.multipassEffect->Finish();
}

}  // namespace corvantis
