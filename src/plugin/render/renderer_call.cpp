#include "plugin/render/renderer_call.h"

#include <optional>
#include <stdexcept>

#include "plugin/job/trapped_call.h"
#include "plugin/render/region_output.h"

namespace corvantis {

RendererResult trappedCurRendererRenderFrame(JobState& job, hostsdk::TimeValue time, hostsdk::Bitmap& bitmap,
                                             CorvantisRenderCallback& callback, hostsdk::ViewParams* view) {
  constexpr float kFrameDuration = 1.0F;
  const std::optional<hostsdk::Rect> region = regionToRender(job.settings);
  RendererResult result;
  result.code = trappedCall(job, "Trapped SEH Exception in CurRendererRenderFrame(): ", result.sehText, 0, [&] {
    return job.hostCore.v8->CurRendererRenderFrame(time, &bitmap, &callback, kFrameDuration, view,
                                                   region ? &*region : nullptr);
  });
  return result;
}

std::u16string codeText(const RendererResult& result) { return result.code != 0 ? u"1" : u"0"; }

void throwIfFaulted(const JobState& job, const RendererResult& result) {
  if (!result.sehText.empty()) throw std::runtime_error(result.sehText + "\n" + job.crashDescription);
}

bool showsFrameBuffer(const JobState& job) { return !job.isRendererA && job.settings.showFrameBuffer; }

void showFrameBuffer(hostsdk::Bitmap& bitmap) {
  bitmap.Display(nullptr, hostsdk::kDisplayPosition, false, true, nullptr, nullptr);
}

}  // namespace corvantis
