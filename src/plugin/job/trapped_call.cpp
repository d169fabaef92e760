#include "plugin/job/trapped_call.h"

#include <algorithm>
#include <cstdint>
#include <new>

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

bool trapFilter(void* jobState, const platform::FaultContext& context) {
  std::string& description = static_cast<JobState*>(jobState)->crashDescription;
  const CrashText text = describeCrash(&context);
  description.assign(text.view().substr(0, std::min(text.view().size(), description.capacity())));
  return isTrappedCode(context.code);
}

bool runTrapped(JobState& jobState, const char* prefix, std::string& sehText, void (*work)(void* argument),
                void* argument) {
  sehText.clear();
  reserveDescription(jobState.crashDescription);
  const std::uint32_t code = platform::runGuarded(work, argument, &trapFilter, &jobState);
  if (code == 0) return false;
  sehText.append(prefix).append(sehExceptionName(code));
  return true;
}

}  // namespace corvantis
