#include "plugin/job/crash_description.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/faults.h"
#include "support/half_readable.h"
#include "support/platform_kind.h"

namespace corvantis {
namespace {

using platform::FaultContext;
using namespace testing;
namespace fault = platform::fault;

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  std::istringstream stream(std::string(text) + "\n");
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string hexadecimal(std::uintptr_t value, int digits = 8) {
  std::array<char, 9> text{};
  std::snprintf(text.data(), text.size(), "%0*X", digits, static_cast<unsigned>(value));
  return text.data();
}

std::string programPath() {
  platform::ModuleAt program;
  platform::findProgram(program);
  return program.path.data();
}

std::string instructionLine(const void* code) {
  std::string line = "Instruction: ";
  for (int i = 0; i < 16; ++i) line += " " + hexadecimal(static_cast<const unsigned char*>(code)[i], 2);
  return line;
}

std::uintptr_t knownCode() { return reinterpret_cast<std::uintptr_t>(&describeCrash); }

// A frame record as a compiler lays it out, the caller's words behind it.
struct FrameRecord {
  std::uintptr_t link = support::kUnmappedAddress, returnAddress = 0;
  std::array<std::uint32_t, 6> words = {1, 2, 0xABCDEF, 4, 0xFFFFFFFF, 6};
};

// A chain of them, innermost first.
std::vector<FrameRecord> chainOf(std::size_t count, std::uintptr_t returnAddress) {
  std::vector<FrameRecord> records(count);
  for (std::size_t i = 0; i < count; ++i) {
    records[i].returnAddress = returnAddress;
    if (i != 0) records[i - 1].link = reinterpret_cast<std::uintptr_t>(&records[i]);
  }
  return records;
}
std::uintptr_t firstOf(const std::vector<FrameRecord>& chain) { return reinterpret_cast<std::uintptr_t>(chain.data()); }

FaultContext contextAt(std::uintptr_t address, std::uintptr_t framePointer) {
  FaultContext context;
  context.code = fault::kIntegerDivideByZero;
  context.address = address;
  context.framePointer = framePointer;
  return context;
}

TEST(SehExceptionName, NamesTheFifteenCodesAndNoOthers) {
  const std::pair<std::uint32_t, const char*> names[] = {
      {0xC0000005, "Access Violation"},
      {0xC000008C, "Array Bounds Exceeded"},
      {0x80000002, "Datatype Misalignment"},
      {0xC000008D, "Float Denormal Operand"},
      {0xC000008E, "Float Divide By Zero"},
      {0xC000008F, "Float Inexact Result"},
      {0xC0000090, "Float Invalid Operation"},
      {0xC0000091, "Float Overflow"},
      {0xC0000092, "Float Stack Check"},
      {0xC000001D, "Illegal Instruction"},
      {0xC0000006, "In Page Error"},
      {0xC0000094, "Integer Divide By Zero"},
      {0xC0000095, "Integer Overflow"},
      {0xC0000096, "Privileged Instruction"},
      {0xC00000FD, "Stack Overflow"},
      {0xC0000093, nullptr},
      {0xE06D7363, nullptr},
      {0, nullptr},
  };
  for (const auto& [code, name] : names) {
    EXPECT_STREQ(sehExceptionName(code), name ? name : "Unknown SEH Exception Code");
    EXPECT_EQ(isTrappedCode(code), name != nullptr) << code;
  }
}

TEST(DescribeCrash, TellsProcessModuleDateCodeAndInstruction) {
  platform::ModuleAt module;
  ASSERT_TRUE(findModuleForAddress(knownCode(), module));
  platform::FileDate date;
  ASSERT_TRUE(platform::lastWriteDate(knownCode(), date));
  std::array<char, 32> dateText{};
  std::snprintf(dateText.data(), dateText.size(), "%02d/%02d/%d", date.month, date.day, date.year);
  const std::vector<FrameRecord> frames = chainOf(1, knownCode() + 1);
  const FaultContext context = contextAt(knownCode(), firstOf(frames));
  const CrashText text = describeCrash(&context);
  EXPECT_THAT(linesOf(text.view()),
              ElementsAre("Process:  " + programPath(), "Module:  " + programPath(),
                          std::string("Date Modified:  ") + dateText.data(), "Exception Code:  C0000094",
                          instructionLine(reinterpret_cast<const void*>(knownCode())),
                          "Call Stack:", hexadecimal(module.base) + "  " + programPath(),
                          "  +" + hexadecimal(knownCode() - module.base) + "  Exception Offset",
                          hexadecimal(module.base) + "  " + programPath(),
                          "  +" + hexadecimal(knownCode() + 1 - module.base) + "  (1, 2, ABCDEF, 4, FFFFFFFF)"));
}

TEST(DescribeCrash, TellsTheAccessOfAnAccessViolationOnly) {
  FaultContext context = contextAt(knownCode(), 0);
  context.code = fault::kAccessViolation;
  context.info = {0, 0x123456789A};
  EXPECT_THAT(std::string(describeCrash(&context).view()), HasSubstr("\nRead Address:  3456789A\nInstruction: "));
  context.info = {1, 0};
  EXPECT_THAT(std::string(describeCrash(&context).view()), HasSubstr("\nWrite Address:  00000000\nInstruction: "));
  context.code = fault::kInPageError;
  EXPECT_THAT(std::string(describeCrash(&context).view()), Not(HasSubstr(" Address:")));
}

TEST(DescribeCrash, OutsideEveryModuleTellsTheAddressInstead) {
  const std::vector<unsigned char> heap(16, 0xAB);  // a jump into data still tells where it led
  for (const std::uintptr_t address : {support::kUnmappedAddress, reinterpret_cast<std::uintptr_t>(heap.data())}) {
    const FaultContext context = contextAt(address, 0);
    const bool isMapped = address != support::kUnmappedAddress;
    std::vector<std::string> lines = {"Process:  " + programPath(), "Exception Addr:  " + hexadecimal(address),
                                      "Exception Code:  C0000094",
                                      isMapped ? instructionLine(heap.data()) : "Instruction: ", "Call Stack:"};
    if (isMapped) lines.push_back(hexadecimal(address));
    EXPECT_EQ(linesOf(describeCrash(&context).view()), lines);
  }
  platform::ModuleAt module;
  ASSERT_TRUE(findModuleForAddress(knownCode(), module));
  EXPECT_FALSE(findModuleForAddress(support::kUnmappedAddress, module));
  EXPECT_STREQ(module.path.data(), "");
  EXPECT_EQ(describeCrash(nullptr).view(), "Process:  " + programPath() + "\nCall Stack:");
}

TEST(DescribeCallStack, EndsAfterTwentyFramesOrAtAReturnAddressThatIsNoCode) {
  const std::vector<FrameRecord> frames = chainOf(50, knownCode());
  std::vector<FrameRecord> ring = chainOf(1, knownCode()), broken = chainOf(5, knownCode());
  ring.front().link = firstOf(ring);  // bites its tail
  const int data = 0;
  // Windows takes whatever can be read for code.
  broken[2].returnAddress = support::kIsWindows ? support::kUnmappedAddress : reinterpret_cast<std::uintptr_t>(&data);
  for (const auto& [first, count] : {std::pair(firstOf(frames), 20U), {firstOf(ring), 20U}, {firstOf(broken), 3U}}) {
    CrashText text;
    const std::size_t appended = describeCallStack(contextAt(knownCode(), first), text);
    EXPECT_EQ(appended, text.view().size());
    EXPECT_EQ(linesOf(text.view()).size(), 1 + 2 * count);
  }
}

// The caller's words are shown all five or not at all; the frame itself is told as long as it can be read.
TEST(DescribeCallStack, LeavesOutCallersWordsThatCannotBeRead) {
  const support::HalfReadable memory;
  for (const std::size_t words : {0U, 4U, 5U}) {
    const std::uintptr_t place = memory.end() - 2 * sizeof(std::uintptr_t) - words * sizeof(std::uint32_t);
    const std::uintptr_t record[] = {support::kUnmappedAddress, knownCode()};
    std::memset(reinterpret_cast<void*>(place), 0x11, memory.end() - place);
    std::memcpy(reinterpret_cast<void*>(place), record, sizeof record);
    CrashText text;
    describeCallStack(contextAt(knownCode(), place), text);
    const std::vector<std::string> lines = linesOf(text.view());
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[4].substr(std::string("  +00000000").size()),
              words == 5 ? "  (11111111, 11111111, 11111111, 11111111, 11111111)" : "");
  }
}

TEST(CrashText, CutsWhatDoesNotFit) {
  CrashText text;
  const std::string half(5000, 'x');
  for (int part = 0; part < 3; ++part) text.text(half);
  EXPECT_EQ(text.hexadecimal(1).view(), std::string(7999, 'x'));
}

}  // namespace
}  // namespace corvantis
