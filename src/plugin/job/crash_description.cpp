#include "plugin/job/crash_description.h"

#include <algorithm>
#include <charconv>

namespace corvantis {
namespace {

namespace fault = platform::fault;

struct FaultName {
  std::uint32_t code;
  const char* name;
};

constexpr std::array kFaultNames = {
    FaultName{fault::kAccessViolation, "Access Violation"},
    FaultName{fault::kArrayBoundsExceeded, "Array Bounds Exceeded"},
    FaultName{fault::kDatatypeMisalignment, "Datatype Misalignment"},
    FaultName{fault::kFloatDenormalOperand, "Float Denormal Operand"},
    FaultName{fault::kFloatDivideByZero, "Float Divide By Zero"},
    FaultName{fault::kFloatInexactResult, "Float Inexact Result"},
    FaultName{fault::kFloatInvalidOperation, "Float Invalid Operation"},
    FaultName{fault::kFloatOverflow, "Float Overflow"},
    FaultName{fault::kFloatStackCheck, "Float Stack Check"},
    FaultName{fault::kIllegalInstruction, "Illegal Instruction"},
    FaultName{fault::kInPageError, "In Page Error"},
    FaultName{fault::kIntegerDivideByZero, "Integer Divide By Zero"},
    FaultName{fault::kIntegerOverflow, "Integer Overflow"},
    FaultName{fault::kPrivilegedInstruction, "Privileged Instruction"},
    FaultName{fault::kStackOverflow, "Stack Overflow"},
};

constexpr int kMaximumFrames = 20;
constexpr std::size_t kInstructionBytes = 16;

const FaultName* findFaultName(std::uint32_t code) {
  const auto* const found =
      std::find_if(kFaultNames.begin(), kFaultNames.end(), [&](const FaultName& entry) { return entry.code == code; });
  return found != kFaultNames.end() ? found : nullptr;
}

std::uint32_t low32(std::uintptr_t value) { return static_cast<std::uint32_t>(value); }

// What a function that keeps a frame pointer leaves at it.
struct FrameRecord {
  std::uintptr_t link;
  std::uintptr_t returnAddress;
};

using CallerWords = std::array<std::uint32_t, 5>;

void appendCallerWords(std::uintptr_t record, CrashText& out) {
  CallerWords words{};
  const std::size_t count = platform::readMemory(record + sizeof(FrameRecord), words.data(), sizeof words);
  if (count != sizeof words) return;
  out.text("  (").hexadecimal(words[0]);
  for (std::size_t i = 1; i < words.size(); ++i) out.text(", ").hexadecimal(words[i]);
  out.text(")");
}

// The faulting instruction itself is told even when the fault is that no code lies there.
bool isTellable(std::uintptr_t address, int frame) {
  char byte = 0;
  return frame == 0 ? platform::readMemory(address, &byte, 1) == 1 : platform::isCodeAddress(address);
}

void appendModule(const platform::FaultContext& context, CrashText& out) {
  platform::ModuleAt module;
  if (!findModuleForAddress(context.address, module)) {
    out.text("\nException Addr:  ").hexadecimal(low32(context.address), 8);
    return;
  }
  out.text("\nModule:  ").text(module.path.data());
  platform::FileDate date;
  if (!platform::lastWriteDate(context.address, date)) return;
  out.text("\nDate Modified:  ").decimal(date.month, 2).text("/").decimal(date.day, 2).text("/").decimal(date.year);
}

void appendFault(const platform::FaultContext& context, CrashText& out) {
  out.text("\nException Code:  ").hexadecimal(context.code, 8);
  if (context.code == fault::kAccessViolation) {
    out.text(context.info[0] != 0 ? "\nWrite" : "\nRead").text(" Address:  ").hexadecimal(low32(context.info[1]), 8);
  }
}

void appendInstruction(std::uintptr_t address, CrashText& out) {
  out.text("\nInstruction: ");
  std::array<unsigned char, kInstructionBytes> bytes{};
  const std::size_t count = platform::readMemory(address, bytes.data(), bytes.size());
  for (std::size_t i = 0; i < count; ++i) out.text(" ").hexadecimal(bytes[i], 2);
}

}  // namespace

CrashText& CrashText::text(std::string_view text) {
  length_ += text.copy(buffer_.data() + length_, kSize - 1 - length_);
  return *this;
}

CrashText& CrashText::hexadecimal(std::uint32_t value, std::size_t digits) { return number(value, 16, digits); }

CrashText& CrashText::decimal(int value, std::size_t digits) {
  return number(static_cast<std::uint32_t>(value), 10, digits);
}

CrashText& CrashText::number(std::uint32_t value, int base, std::size_t digits) {
  std::array<char, 10> figures{};
  const char* const end = std::to_chars(figures.data(), figures.data() + figures.size(), value, base).ptr;
  const std::string_view shown(figures.data(), static_cast<std::size_t>(end - figures.data()));
  for (std::size_t count = shown.size(); count < digits; ++count) text("0");
  for (const char figure : shown) {
    const char upper = figure >= 'a' ? static_cast<char>(figure - 'a' + 'A') : figure;
    text({&upper, 1});
  }
  return *this;
}

const char* sehExceptionName(std::uint32_t code) {
  const FaultName* const found = findFaultName(code);
  return found != nullptr ? found->name : "Unknown SEH Exception Code";
}

bool isTrappedCode(std::uint32_t code) { return findFaultName(code) != nullptr; }

bool findModuleForAddress(std::uintptr_t address, platform::ModuleAt& module) {
  module = {};
  return platform::findModule(address, module);
}

std::size_t describeCallStack(const platform::FaultContext& context, CrashText& out) {
  const std::size_t before = out.view().size();
  FrameRecord record{context.framePointer, context.address};
  std::uintptr_t place = 0;  // of `record`; the first one is nowhere
  for (int frame = 0; frame < kMaximumFrames; ++frame) {
    if (!isTellable(record.returnAddress, frame)) break;
    platform::ModuleAt module;
    if (findModuleForAddress(record.returnAddress, module)) {
      out.text("\n").hexadecimal(low32(module.base), 8).text("  ").text(module.path.data());
      out.text("\n  +").hexadecimal(low32(record.returnAddress - module.base), 8);
      frame == 0 ? (void)out.text("  Exception Offset") : appendCallerWords(place, out);
    } else {
      out.text("\n").hexadecimal(low32(record.returnAddress), 8);
    }
    place = record.link;
    if (platform::readMemory(place, &record, sizeof record) != sizeof record) break;
  }
  return out.view().size() - before;
}

CrashText describeCrash(const platform::FaultContext* context) {
  CrashText text;
  platform::ModuleAt program;
  platform::findProgram(program);
  text.text("Process:  ").text(program.path.data());
  if (context != nullptr) {
    appendModule(*context, text);
    appendFault(*context, text);
    appendInstruction(context->address, text);
  }
  text.text("\nCall Stack:");
  if (context != nullptr) describeCallStack(*context, text);
  return text;
}

}  // namespace corvantis
