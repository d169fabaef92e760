// One call of the host's renderer.
#pragma once

#include <string>

#include "hostsdk/bitmap.h"
#include "hostsdk/scene.h"
#include "hostsdk/types.h"
#include "plugin/job/job_state.h"
#include "plugin/render/render_callback.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// The outcome of a renderer call: `sehText` is not empty after a trapped machine fault.
struct RendererResult {
  int code = 0;
  std::string sehText;
};

// Renders `bitmap`, and the elements' bitmaps, at `time` (ticks) with machine faults trapped, for the job's region and
// a frame duration of 1. `view` may be null: the camera's or viewport's own.
RendererResult trappedCurRendererRenderFrame(JobState& job, hostsdk::TimeValue time, hostsdk::Bitmap& bitmap,
                                             CorvantisRenderCallback& callback, hostsdk::ViewParams* view);

// The text that reports the call's success to the worker: "1" or "0".
std::u16string codeText(const RendererResult& result);

// Throws std::runtime_error with the fault and its crash description if there was one.
void throwIfFaulted(const JobState& job, const RendererResult& result);

// Whether the frame is shown in a frame-buffer window while it renders; renderer A has its own.
bool showsFrameBuffer(const JobState& job);
void showFrameBuffer(hostsdk::Bitmap& bitmap);

}  // namespace corvantis
