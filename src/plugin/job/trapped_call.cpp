#include "plugin/job/trapped_call.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <stdexcept>

#include "plugin/job/crash_description.h"

namespace corvantis {
namespace {

// Room for the longest description. Without the memory for it descriptions are cut, and the call is made all the same.
void reserveDescription(std::string& description) noexcept {
  try {
    description.reserve(CrashText::kSize);
  } catch (const std::bad_alloc&) {
    return;
  }
}

}  // namespace

std::string faultText(const JobState& job, const TrapOutcome& outcome) {
  return outcome.sehText + "\n" + job.crashDescription;
}

void throwIfFaulted(const JobState& job, const TrapOutcome& outcome) {
  if (outcome.faulted()) throw std::runtime_error(faultText(job, outcome));
}

bool trapFilter(void* job, const platform::FaultContext& context) {
  std::string& description = static_cast<JobState*>(job)->crashDescription;
  const CrashText text = describeCrash(&context);
  description.assign(text.view().substr(0, std::min(text.view().size(), description.capacity())));
  return isTrappedCode(context.code);
}

std::string runTrapped(JobState& job, const char* prefix, void (*work)(void* argument), void* argument) {
  reserveDescription(job.crashDescription);
  const std::uint32_t code = platform::runGuarded(work, argument, &trapFilter, &job);
  return code == 0 ? std::string() : std::string(prefix) + sehExceptionName(code);
}

}  // namespace corvantis
