#include "plugin/job/job_state.h"

#include "plugin/util/log_file.h"

namespace corvantis {

JobState::JobState() { openLogFile(log_file); }

}  // namespace corvantis
