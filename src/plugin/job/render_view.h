// What the job renders through: a viewport, and a camera or the viewport's own view.
#pragma once

#include <string>

#include "plugin/job/job_state.h"

namespace corvantis {

// Fills renderViewport, renderViewLocked, lockedViewportIndex and renderCamera. A viewport locked for rendering decides
// alone; with the active viewport `cameraName` names the camera, and an empty name stands for the viewport's own.
// Throws std::runtime_error when the active viewport is rendered and the scene has no node of that name; whether the
// node is a camera is tested when the renderer is opened. A locked viewport that the host does not have is rendered as
// a view without camera, which the host then refuses to open.
void chooseRenderView(JobState& job, const std::u16string& cameraName);

}  // namespace corvantis
