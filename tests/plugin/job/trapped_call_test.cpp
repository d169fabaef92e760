#include "plugin/job/trapped_call.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>

#include "platform/fault_guard.h"
#include "support/faults.h"
#include "support/platform_kind.h"

namespace corvantis {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class TrappedCall : public testing::Test {
 protected:
  JobState job_;
};

TEST_F(TrappedCall, ReturnsWhatTheWorkReturns) {
  const Trapped<int> outcome = trappedCall(job_, "Trapped: ", 0, [] { return 42; });
  EXPECT_EQ(outcome.value, 42);
  EXPECT_EQ(outcome.sehText, "");
  EXPECT_NO_THROW(throwIfFaulted(job_, outcome));
  EXPECT_EQ(job_.crashDescription, "No message");
}

TEST_F(TrappedCall, FaultBecomesAnErrorTextAndADescription) {
  const Trapped<int> outcome =
      trappedCall(job_, "Trapped SEH Exception in StartJob(): ", 7, [] { return support::divideIntegerByZero(); });
  EXPECT_EQ(outcome.value, 7);
  EXPECT_EQ(outcome.sehText, "Trapped SEH Exception in StartJob(): Integer Divide By Zero");
  EXPECT_THAT(job_.crashDescription,
              AllOf(StartsWith("Process:  "), HasSubstr("\nException Code:  C0000094"), Not(HasSubstr(" Address:"))));
}

TEST_F(TrappedCall, DescribesTheRealCallStack) {
  EXPECT_EQ(trappedCall(job_, "", [] { support::writeToNull(); }).sehText, "Access Violation");
  EXPECT_THAT(job_.crashDescription, HasSubstr("\nWrite Address:  00000000"));
  EXPECT_THAT(job_.crashDescription, HasSubstr("  Exception Offset\n"));
  std::size_t frames = 0;
  for (std::size_t at = 0; (at = job_.crashDescription.find("\n  +", at)) != std::string::npos; ++at) ++frames;
  // On Windows the guarded block keeps its frame pointer for itself, and the chain ends there.
  EXPECT_GE(frames, support::kIsWindows ? 3U : 4U) << job_.crashDescription;
  EXPECT_LE(frames, 20U);
}

TEST_F(TrappedCall, WorksAgainAfterAFaultAndKeepsTheDescription) {
  trappedCall(job_, "First: ", [] { support::readFromNull(); });
  const std::string description = job_.crashDescription;
  EXPECT_FALSE(trappedCall(job_, "Second: ", [] {}).faulted());
  EXPECT_EQ(job_.crashDescription, description);
  EXPECT_EQ(trappedCall(job_, "Third: ", [] { support::executeIllegalInstruction(); }).sehText,
            "Third: Illegal Instruction");
  EXPECT_NE(job_.crashDescription, description);
}

TEST_F(TrappedCall, InnermostCallTakesTheFault) {
  std::string innerText;
  bool wentOn = false;
  const Trapped<void> outer = trappedCall(job_, "Outer: ", [&] {
    innerText = trappedCall(job_, "Inner: ", [] { support::readFromNull(); }).sehText;
    wentOn = true;
  });
  EXPECT_EQ(innerText, "Inner: Access Violation");
  EXPECT_FALSE(outer.faulted());
  EXPECT_TRUE(wentOn);
}

TEST_F(TrappedCall, ThrownExceptionPassesAndLeavesADescription) {
  try {
    trappedCall(job_, "Trapped: ", [] { throw std::runtime_error("Failed to load scene"); });
    FAIL() << "the exception did not arrive";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Failed to load scene");
  }
  EXPECT_THAT(job_.crashDescription, AllOf(StartsWith("Process:  "), HasSubstr("\nException Code:  E06D7363")));
}

// Stands for the host's own handling of what a trapped call does not handle.
bool acceptAll(void* code, const platform::FaultContext& context) {
  *static_cast<std::uint32_t*>(code) = context.code;
  return true;
}

TEST_F(TrappedCall, FloatUnderflowGoesOnOutward) {
  struct Work {
    JobState& job;
    bool returned = false;
    static void run(void* argument) {
      auto& self = *static_cast<Work*>(argument);
      trappedCall(self.job, "Trapped: ", 0.0, support::underflowFloat);
      self.returned = true;
    }
  } work{job_};
  std::uint32_t seen = 0;
  EXPECT_EQ(platform::runGuarded(&Work::run, &work, &acceptAll, &seen), platform::fault::kFloatUnderflow);
  EXPECT_EQ(seen, platform::fault::kFloatUnderflow);
  EXPECT_FALSE(work.returned);
  EXPECT_THAT(job_.crashDescription, HasSubstr("\nException Code:  C0000093"));
}

TEST_F(TrappedCall, FilterCutsTheDescriptionToTheMemoryThereIs) {
  JobState job;
  job.crashDescription.shrink_to_fit();
  const std::size_t capacity = job.crashDescription.capacity();
  platform::FaultContext context;
  context.code = platform::fault::kAccessViolation;
  EXPECT_TRUE(trapFilter(&job, context));
  EXPECT_EQ(job.crashDescription.capacity(), capacity);
  EXPECT_EQ(job.crashDescription.size(), capacity);
  EXPECT_THAT(job.crashDescription, StartsWith("Process:  "));
}

}  // namespace
}  // namespace corvantis
