// Job files: a job written down as JSON.
#pragma once

#include <optional>
#include <string>

#include "worker/job/job.h"

namespace worker {

// What a job file may say besides the job itself.
struct JobFile {
  Job job;
  std::optional<std::string> host;
  std::optional<double> timeout;  // seconds
};

// Reads a job file; relative paths in it are relative to its folder. std::runtime_error names the file and the field
// that is wrong, what was expected there and what was found. The fields are described in docs/worker.md.
JobFile readJobFile(const std::string& path);

}  // namespace worker
