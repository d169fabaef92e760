// The start of a job: loads its scene into the host and leaves behind what rendering its frames needs.
#pragma once

#include <string>

#include "plugin/job/job_state.h"
#include "plugin/job/trapped_call.h"

namespace corvantis {

// Resets the settings that belong to one job, applies gamma, default actions and path configuration, loads the scene,
// chooses viewport and camera and recognises the renderer; jobRunning is set last, and only when all of it succeeded.
// A renderer still open, which only a frame rendered outside any job leaves, is closed before the load.
//
// `fileName` is the scene's path. `cameraName` is the camera to render through, and an empty name stands for the active
// viewport's own; a viewport locked for rendering decides alone. Whether the node of that name is a camera is tested
// when the renderer is opened. A locked viewport that the host does not have is rendered as a view without camera,
// which the host then refuses to open. A renderer that is not known, or none, leaves the three renderer flags clear.
//
// Every failure is a std::runtime_error whose text is meant for the worker: the file is no scene file, its load fails,
// throws or faults, the host recorded a missing external scene (then with the host's own text), the scene has no node
// of the camera's name. What was done to the host before it stays done. Other exceptions of host calls outside the
// load pass through. While a job is open the call fails, but the settings are reset all the same.
void StartJob(JobState& job, const std::u16string& fileName, const std::u16string& cameraName);

// The same with machine faults trapped.
Trapped<void> trappedStartJob(JobState& job, const std::u16string& fileName, const std::u16string& cameraName);

}  // namespace corvantis
