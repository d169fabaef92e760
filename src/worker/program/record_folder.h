// Where a job leaves its record.
#pragma once

#include <string>

#include "worker/job/job.h"

namespace worker {

// "<name>.job" beside the output, named after it without its extension; for a job without an output beside the scene,
// or, where nothing can be written there, in the current folder. Native and absolute; it is made.
std::string makeRecordFolder(const Job& job);

}  // namespace worker
