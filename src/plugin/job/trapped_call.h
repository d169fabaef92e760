// Calls that may fault, made so that a fault becomes an error text.
//
// Thrown exceptions pass through unchanged, and leave a crashDescription of their own. Faults that are not handled
// (float underflow among them) go on outward.
#pragma once

#include <string>
#include <type_traits>
#include <utility>

#include "platform/fault_guard.h"
#include "plugin/job/job_state.h"

namespace corvantis {

// How a trapped call ended. After a handled fault `sehText` is the call's prefix followed by the fault's name, the
// job's crashDescription tells the rest, and the work is abandoned where it stood; otherwise `sehText` is empty.
//
// The heap may be what the fault has broken: the memory of both texts, and of the two together, is taken before the
// work begins.
struct TrapOutcome {
  std::string sehText;

  bool faulted() const { return !sehText.empty(); }
};

// The same with what the work returned.
template <class T>
struct Trapped : TrapOutcome {
  T value{};
};
template <>
struct Trapped<void> : TrapOutcome {};

// The fault and its crash description, as the worker is told of it; in the memory that the outcome has kept for it.
std::string faultText(const JobState& job, TrapOutcome&& outcome);
// Throws std::runtime_error with that text if there was a fault.
void throwIfFaulted(const JobState& job, const TrapOutcome& outcome);

// A platform::FaultFilter; `job` is the JobState. Describes whatever it is shown and accepts the trapped codes. The
// description is cut to the capacity that the job's crashDescription has at that moment: a filter must not allocate.
bool trapFilter(void* job, const platform::FaultContext& context);

// The part of a trapped call that does not depend on the work's type; gives sehText. While it lasts, a fault on a
// thread that has no guard is described in the log before the system or the host deals with it (on POSIX).
std::string runTrapped(JobState& job, const char* prefix, void (*work)(void* argument), void* argument);

template <class Work>
Trapped<void> trappedCall(JobState& job, const char* prefix, Work&& work) {
  auto body = [&] { work(); };
  return {{runTrapped(
      job, prefix, [](void* call) { (*static_cast<decltype(body)*>(call))(); }, &body)}};
}

// As above, for work with a result; whenFaulted takes its place after a handled fault.
template <class Work, class Result>
Trapped<Result> trappedCall(JobState& job, const char* prefix, Result whenFaulted, Work&& work) {
  static_assert(std::is_trivially_copyable_v<Result>, "a fault may leave it half written");
  Result result = whenFaulted;
  Trapped<void> outcome = trappedCall(job, prefix, [&] { result = static_cast<Result>(work()); });
  if (outcome.faulted()) result = whenFaulted;
  return {{std::move(outcome)}, result};
}

}  // namespace corvantis
