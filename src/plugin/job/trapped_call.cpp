#include "plugin/job/trapped_call.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <stdexcept>

#include "plugin/job/crash_description.h"
#include "plugin/util/log_file.h"

namespace corvantis {
namespace {

// Room for the longest text. Without the memory for it descriptions are cut, and the call is made all the same.
void reserve(std::string& text, std::size_t size) noexcept {
  try {
    text.reserve(size);
  } catch (const std::bad_alloc&) {
    return;
  }
}

void logUnguardedFault(const platform::FaultContext& context) {
  CrashText heading;
  heading.text("Fault on a thread that no trapped call guards: ").text(sehExceptionName(context.code)).text("\n");
  log_file.writeUnlocked(heading.view());
  log_file.writeUnlocked(describeCrash(&context).text("\n").view());
}

}  // namespace

std::string faultText(const JobState& job, TrapOutcome&& outcome) {
  return std::move(outcome.sehText.append("\n").append(job.crashDescription));
}

void throwIfFaulted(const JobState& job, const TrapOutcome& outcome) {
  if (outcome.faulted()) throw std::runtime_error(faultText(job, TrapOutcome(outcome)));
}

bool trapFilter(void* job, const platform::FaultContext& context) {
  std::string& description = static_cast<JobState*>(job)->crashDescription;
  const CrashText text = describeCrash(&context);
  description.assign(text.view().substr(0, std::min(text.view().size(), description.capacity())));
  return isTrappedCode(context.code);
}

std::string runTrapped(JobState& job, const char* prefix, void (*work)(void* argument), void* argument) {
  constexpr std::size_t kHeading = 128;  // prefix, name and line end
  std::string text;
  reserve(text, kHeading + CrashText::kSize);
  reserve(job.crashDescription, CrashText::kSize);
  platform::tellUnguardedFaults(&logUnguardedFault);
  const std::uint32_t code = platform::runGuarded(work, argument, &trapFilter, &job);
  if (code != 0) text.append(prefix).append(sehExceptionName(code));
  return text;
}

}  // namespace corvantis
