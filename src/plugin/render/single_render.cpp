#include <stdexcept>

#include "plugin/daemon/requests/requests.h"
#include "plugin/render/frame_passes.h"
#include "plugin/render/render_callback.h"
#include "plugin/render/renderer_call.h"

namespace corvantis {

void renderWhole(JobState& job, hostsdk::TimeValue time, hostsdk::Bitmap& image, win32::simple_socket& connection) {
  CorvantisRenderCallback callback(connection, u"");
  callback.isRendererB = job.isRendererB;
  const bool shown = showsFrameBuffer(job);
  if (shown) showFrameBuffer(image);

  const RendererResult result = trappedCurRendererRenderFrame(job, time, image, callback, nullptr);
  sendStdoutLine(connection, u"CallCurRendererRenderFrame returned code " + codeText(result));
  throwIfFaulted(job, result);
  if (result.code == 0) throw std::runtime_error("Failed to render the frame.");
  if (shown) image.UnDisplay();
}

}  // namespace corvantis
