// The start of a job: loads its scene into the host and leaves behind what rendering its frames needs.
#pragma once

#include <string>

#include "plugin/job/job_state.h"

namespace corvantis {

// Resets the settings that belong to one job, applies gamma, default actions and path configuration, loads the scene,
// chooses viewport and camera and recognises the renderer; jobRunning is set last, and only when all of it succeeded.
// A renderer still open, which only a frame rendered outside any job leaves, is closed before the load.
// `fileName` is the scene's path, `cameraName` the camera to render through (empty: the viewport's).
//
// Every failure is a std::runtime_error whose text is meant for the worker; what was done to the host before it stays
// done. Other exceptions of host calls outside the load pass through. While a job is open the call fails, but the
// settings are reset all the same.
void StartJob(JobState& job, const std::u16string& fileName, const std::u16string& cameraName);

// The same with machine faults trapped: `sehText` is emptied, and after a fault tells which.
void trappedStartJob(JobState& job, const std::u16string& fileName, const std::u16string& cameraName,
                     std::string& sehText);

// Switches the host's gamma on with the settings' values; without gammaCorrection the host keeps what it has.
void applyGammaSettings(const JobState& job);

}  // namespace corvantis
