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

using namespace testing;

class TrappedCall : public testing::Test {
 protected:
  JobState job_;
};

TEST_F(TrappedCall, FaultBecomesAnErrorTextAndADescription) {
  const Trapped<int> none = trappedCall(job_, "Trapped: ", 0, [] { return 42; });
  EXPECT_EQ(std::pair(none.value, none.sehText), std::pair(42, std::string()));
  EXPECT_NO_THROW(throwIfFaulted(job_, none));
  EXPECT_EQ(job_.crashDescription, "No message");
  const Trapped<int> first = trappedCall(job_, "First: ", 7, [] { return support::divideIntegerByZero(); });
  EXPECT_EQ(std::pair(first.value, first.sehText), std::pair(7, std::string("First: Integer Divide By Zero")));
  const std::string description = job_.crashDescription;
  EXPECT_THAT(description,
              AllOf(StartsWith("Process:  "), HasSubstr("\nException Code:  C0000094"), Not(HasSubstr(" Address:"))));
  EXPECT_FALSE(trappedCall(job_, "Second: ", [] {}).faulted());
  EXPECT_EQ(job_.crashDescription, description);
  const Trapped<void> third = trappedCall(job_, "Third: ", [] { support::executeIllegalInstruction(); });
  EXPECT_NE(job_.crashDescription, description);
  EXPECT_THAT([&] { throwIfFaulted(job_, third); },
              ThrowsMessage<std::runtime_error>("Third: Illegal Instruction\n" + job_.crashDescription));
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

TEST_F(TrappedCall, ThrownExceptionPassesAndLeavesADescription) {
  EXPECT_THAT([&] { trappedCall(job_, "Trapped: ", [] { throw std::runtime_error("Failed to load scene"); }); },
              ThrowsMessage<std::runtime_error>("Failed to load scene"));
  EXPECT_THAT(job_.crashDescription, AllOf(StartsWith("Process:  "), HasSubstr("\nException Code:  E06D7363")));
}

TEST_F(TrappedCall, FilterCutsTheDescriptionToTheMemoryThereIs) {
  JobState job;
  job.crashDescription.shrink_to_fit();
  const std::size_t capacity = job.crashDescription.capacity();
  platform::FaultContext context;
  context.code = platform::fault::kAccessViolation;
  EXPECT_TRUE(trapFilter(&job, context));
  EXPECT_THAT(job.crashDescription, StartsWith("Process:  "));
  EXPECT_EQ(job.crashDescription.capacity(), capacity);
  EXPECT_EQ(job.crashDescription.size(), capacity);
  context.code = platform::fault::kFloatUnderflow;  // goes on outward
  EXPECT_FALSE(trapFilter(&job, context));
}

}  // namespace
}  // namespace corvantis
