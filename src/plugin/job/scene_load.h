// Loading the job's scene file.
#pragma once

#include <string>

#include "plugin/job/job_state.h"

namespace corvantis {

// Loads or merges the path configuration file that the settings name, if they do. Whether the host could read it is
// not examined.
void usePathConfiguration(const JobSettings& settings);

// Tests and loads `fileName`. Throws std::runtime_error when it is no scene file, when the load fails, throws or
// faults, and when the host recorded a missing external scene (then with the host's own text).
void loadScene(JobState& job, const std::u16string& fileName);

// The host's load with machine faults trapped; false after a fault, and `sehText` then tells which.
bool trappedLoadFromFile(JobState& job, const std::u16string& fileName, std::string& sehText);

}  // namespace corvantis
