// Calls that may fault, made so that a fault becomes an error text.
//
// sehText is emptied first. After a handled fault it is the prefix followed by the fault's name, the job's
// crashDescription tells the rest, and the call returns normally; the work is abandoned where it stood. Thrown
// exceptions pass through unchanged, and leave a crashDescription of their own. Faults that are not handled (float
// underflow among them) go on outward.
#pragma once

#include <string>
#include <type_traits>

#include "platform/fault_guard.h"
#include "plugin/job/job_state.h"

namespace corvantis {

// A platform::FaultFilter; `jobState` is the JobState. Describes whatever it is shown and accepts the trapped codes.
// The description is cut to the capacity that jobState.crashDescription has at that moment: a filter must not allocate.
bool trapFilter(void* jobState, const platform::FaultContext& context);

// The parts of a trapped call that do not depend on the work's type. True when a fault was handled.
bool runTrapped(JobState& jobState, const char* prefix, std::string& sehText, void (*work)(void* argument),
                void* argument);

template <class Work>
bool runTrapped(JobState& jobState, const char* prefix, std::string& sehText, Work& work) {
  const auto run = [](void* body) { (*static_cast<Work*>(body))(); };
  return runTrapped(jobState, prefix, sehText, run, &work);
}

template <class Work>
void trappedCall(JobState& jobState, const char* prefix, std::string& sehText, Work&& work) {
  auto body = [&] { work(); };
  runTrapped(jobState, prefix, sehText, body);
}

// As above, for work with a result; whenFaulted takes its place after a handled fault.
template <class Work, class Result>
Result trappedCall(JobState& jobState, const char* prefix, std::string& sehText, Result whenFaulted, Work&& work) {
  static_assert(std::is_trivially_copyable_v<Result>, "a fault may leave it half written");
  Result result = whenFaulted;
  auto body = [&] { result = static_cast<Result>(work()); };
  return runTrapped(jobState, prefix, sehText, body) ? whenFaulted : result;
}

}  // namespace corvantis
