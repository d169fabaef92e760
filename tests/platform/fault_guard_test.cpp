#include "platform/fault_guard.h"

#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <array>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "support/faults.h"
#include "support/half_readable.h"
#include "support/platform_kind.h"

namespace {

using platform::FaultContext;
namespace fault = platform::fault;

// What a filter may count on, less what is used up on the way to it.
__attribute__((noinline)) void useStack() {
  volatile char room[60 * 1024];
  for (std::size_t at = sizeof room; at > 0; at -= 1024) room[at - 1] = 1;
}

// A filter's state: what it was shown last, how often it was asked, and its answer.
struct Witness {
  bool accepts = true;
  int asked = 0;
  FaultContext last;

  static bool filter(void* state, const FaultContext& context) {
    auto& self = *static_cast<Witness*>(state);
    ++self.asked;
    self.last = context;
    useStack();
    return self.accepts;
  }
};

template <class Work>
std::uint32_t guarded(Witness& witness, Work work) {
  return platform::runGuarded([](void* argument) { (*static_cast<Work*>(argument))(); }, &work, &Witness::filter,
                              &witness);
}

void expectGuardStillWorks() {
  Witness witness;
  bool ran = false;
  EXPECT_EQ(guarded(witness, [&] { ran = true; }), 0U);
  EXPECT_TRUE(ran);
  EXPECT_EQ(witness.asked, 0);
  EXPECT_EQ(guarded(witness, [] { support::readFromNull(); }), fault::kAccessViolation);
}

constexpr std::uintptr_t kUntold = ~std::uintptr_t{0};
// What Windows answers for a jump to where no code is; elsewhere it is a read.
constexpr std::uintptr_t kExecution = support::kIsWindows ? 8 : 0;

TEST(FaultGuard, EveryFaultIsCaughtAndNamedAgainAndAgain) {
  const struct {
    const char* name;
    void (*work)();
    std::uint32_t code;
    std::optional<std::array<std::uintptr_t, 2>> info;
    std::uintptr_t instruction = kUntold;  // where it is not in code
  } cases[] = {
      {"write to null", support::writeToNull, fault::kAccessViolation, {{1, 0}}},
      {"read from null", [] { support::readFromNull(); }, fault::kAccessViolation, {{0, 0}}},
      {"call unmapped",
       support::callUnmapped,
       fault::kAccessViolation,
       {{kExecution, support::kUnmappedAddress}},
       support::kUnmappedAddress},
      {"impossible address", support::readImpossibleAddress, fault::kAccessViolation, {{0, kUntold}}},
      {"integer division", [] { support::divideIntegerByZero(); }, fault::kIntegerDivideByZero, {}},
      {"illegal instruction", support::executeIllegalInstruction, fault::kIllegalInstruction, {}},
      {"privileged instruction", [] { asm volatile("hlt"); }, fault::kPrivilegedInstruction, {}},
      {"runaway recursion", [] { support::overflowStack(); }, fault::kStackOverflow, {}},
      {"float division", [] { support::divideFloatByZero(); }, fault::kFloatDivideByZero, {}},
      {"float underflow", [] { support::underflowFloat(); }, fault::kFloatUnderflow, {}},
  };
  const unsigned traps = _mm_getcsr() & _MM_MASK_MASK;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    if (c.code == fault::kStackOverflow && !support::stackOverflowCanBeTold()) continue;  // Wine ends the process
    for (int round = 0; round < 3; ++round) {
      Witness witness;
      EXPECT_EQ(guarded(witness, c.work), c.code);
      EXPECT_EQ(_mm_getcsr() & _MM_MASK_MASK, traps);
      EXPECT_EQ(witness.asked, 1);
      EXPECT_EQ(witness.last.code, c.code);
      EXPECT_NE(witness.last.framePointer, 0U);
      EXPECT_TRUE(platform::isCodeAddress(witness.last.address) || witness.last.address == c.instruction);
      EXPECT_EQ(witness.last.hasInfo, c.info.has_value());
      EXPECT_EQ(witness.last.info, c.info.value_or(witness.last.info));
    }
    expectGuardStillWorks();
  }
}

TEST(FaultGuard, StackOverflowOfAnotherThreadIsToldFromOtherFaults) {
  if (!support::stackOverflowCanBeTold()) GTEST_SKIP() << "Wine ends the process on this processor";
  Witness witness;
  std::uint32_t first = 0;
  std::uint32_t second = 0;
  std::thread([&] {
    first = guarded(witness, [] { support::overflowStack(); });
    second = guarded(witness, [] { support::overflowStack(); });
  }).join();
  EXPECT_EQ(first, fault::kStackOverflow);
  EXPECT_EQ(second, fault::kStackOverflow);
}

// An abandoned handler never frees its exception; leak checkers are to find somebody who holds it.
const int* volatile abandonedException = nullptr;

TEST(FaultGuard, ForgetsTheExceptionsThatTheAbandonedWorkWasHandling) {
  Witness witness;
  const std::uint32_t code = guarded(witness, [] {
    try {
      throw 1;
    } catch (const int& thrown) {
      abandonedException = &thrown;
      support::writeToNull();
    }
  });
  EXPECT_EQ(code, fault::kAccessViolation);
  EXPECT_EQ(std::current_exception(), nullptr);
}

TEST(FaultGuard, InnermostAcceptingFilterWins) {
  Witness outer;
  Witness inner;
  std::uint32_t innerCode = 0;
  bool outerWorkEnded = false;
  const std::uint32_t outerCode = guarded(outer, [&] {
    innerCode = guarded(inner, support::writeToNull);
    outerWorkEnded = true;
  });
  EXPECT_EQ(innerCode, fault::kAccessViolation);
  EXPECT_TRUE(outerWorkEnded);
  EXPECT_EQ(outerCode, 0U);
  EXPECT_EQ(outer.asked, 0);

  inner.accepts = false;
  outerWorkEnded = false;
  EXPECT_EQ(guarded(outer,
                    [&] {
                      guarded(inner, support::writeToNull);
                      outerWorkEnded = true;
                    }),
            fault::kAccessViolation);
  EXPECT_FALSE(outerWorkEnded);
  EXPECT_EQ(inner.asked, 2);
  EXPECT_EQ(outer.asked, 1);
  expectGuardStillWorks();
}

TEST(FaultGuard, ThrownExceptionsPassUnchangedAfterTheFilterHasSeenThem) {
  Witness outer;
  Witness inner;
  const std::runtime_error* thrown = nullptr;
  try {
    guarded(outer, [&] {
      guarded(inner, [&] {
        try {
          throw std::runtime_error("render failed");
        } catch (const std::runtime_error& error) {
          thrown = &error;
          throw;
        }
      });
    });
    FAIL() << "the exception did not arrive";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(&error, thrown);
    EXPECT_STREQ(error.what(), "render failed");
  }
  EXPECT_EQ(inner.asked, 1);
  EXPECT_EQ(outer.asked, 1);
  EXPECT_EQ(inner.last.code, fault::kCppThrow);
  EXPECT_TRUE(platform::isCodeAddress(inner.last.address));
  expectGuardStillWorks();
}

TEST(ReadMemory, CopiesOnlyWhatIsThere) {
  const std::string text = "sixteen bytes...";
  std::array<char, 16> copy{};
  EXPECT_EQ(platform::readMemory(reinterpret_cast<std::uintptr_t>(text.data()), copy.data(), copy.size()), 16U);
  EXPECT_EQ(std::string(copy.data(), copy.size()), text);
  EXPECT_EQ(platform::readMemory(support::kUnmappedAddress, copy.data(), copy.size()), 0U);
  EXPECT_EQ(platform::readMemory(~std::uintptr_t{0} - 7, copy.data(), copy.size()), 0U);
  const support::HalfReadable memory;
  EXPECT_EQ(platform::readMemory(memory.end() - 5, copy.data(), copy.size()), 5U);
  EXPECT_EQ(platform::readMemory(memory.end(), copy.data(), copy.size()), 0U);
}

TEST(IsCodeAddress, TellsCodeFromDataAndNothing) {
  const int data = 0;
  EXPECT_TRUE(platform::isCodeAddress(reinterpret_cast<std::uintptr_t>(&platform::runGuarded)));
  // Windows asks no more of code than that it can be read.
  EXPECT_EQ(platform::isCodeAddress(reinterpret_cast<std::uintptr_t>(&data)), support::kIsWindows);
  EXPECT_FALSE(platform::isCodeAddress(support::kUnmappedAddress));
}

}  // namespace
