#include "plugin/job/crash_description.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

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

std::size_t appendCallerWords(std::uintptr_t record, CrashText& out) {
  CallerWords words{};
  const std::size_t count = platform::readMemory(record + sizeof(FrameRecord), words.data(), sizeof words);
  if (count != sizeof words) return 0;
  return out.append("  (%X, %X, %X, %X, %X)", words[0], words[1], words[2], words[3], words[4]);
}

// The faulting instruction itself is told even when the fault is that no code lies there.
bool isTellable(std::uintptr_t address, int frame) {
  char byte = 0;
  return frame == 0 ? platform::readMemory(address, &byte, 1) == 1 : platform::isCodeAddress(address);
}

void appendModule(const platform::FaultContext& context, CrashText& out) {
  platform::ModuleAt module;
  if (!findModuleForAddress(context.address, module)) {
    out.append("\nException Addr:  %08X", low32(context.address));
    return;
  }
  out.append("\nModule:  %s", module.path.data());
  platform::FileDate date;
  if (platform::lastWriteDate(context.address, date)) {
    out.append("\nDate Modified:  %02d/%02d/%d", date.month, date.day, date.year);
  }
}

void appendFault(const platform::FaultContext& context, CrashText& out) {
  out.append("\nException Code:  %08X", context.code);
  if (context.code == fault::kAccessViolation) {
    out.append("\n%s Address:  %08X", context.info[0] != 0 ? "Write" : "Read", low32(context.info[1]));
  }
}

void appendInstruction(std::uintptr_t address, CrashText& out) {
  out.append("\nInstruction: ");
  std::array<unsigned char, kInstructionBytes> bytes{};
  const std::size_t count = platform::readMemory(address, bytes.data(), bytes.size());
  for (std::size_t i = 0; i < count; ++i) out.append(" %02X", bytes[i]);
}

}  // namespace

std::size_t CrashText::append(const char* format, ...) {
  const std::size_t room = kSize - length_;
  std::va_list arguments;
  va_start(arguments, format);
  const int wanted = std::vsnprintf(buffer_.data() + length_, room, format, arguments);
  va_end(arguments);
  if (wanted < 0) return 0;
  const std::size_t added = std::min(static_cast<std::size_t>(wanted), room - 1);
  length_ += added;
  return added;
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
  std::size_t appended = 0;
  FrameRecord record{context.framePointer, context.address};
  std::uintptr_t place = 0;  // of `record`; the first one is nowhere
  for (int frame = 0; frame < kMaximumFrames; ++frame) {
    if (!isTellable(record.returnAddress, frame)) break;
    platform::ModuleAt module;
    if (findModuleForAddress(record.returnAddress, module)) {
      appended += out.append("\n%08X  %s", low32(module.base), module.path.data());
      appended += out.append("\n  +%08X", low32(record.returnAddress - module.base));
      appended += frame == 0 ? out.append("  Exception Offset") : appendCallerWords(place, out);
    } else {
      appended += out.append("\n%08X", low32(record.returnAddress));
    }
    place = record.link;
    if (platform::readMemory(place, &record, sizeof record) != sizeof record) break;
  }
  return appended;
}

CrashText describeCrash(const platform::FaultContext* context) {
  CrashText text;
  platform::ModuleAt program;
  platform::findProgram(program);
  text.append("Process:  %s", program.path.data());
  if (context != nullptr) {
    appendModule(*context, text);
    appendFault(*context, text);
    appendInstruction(context->address, text);
  }
  text.append("\nCall Stack:");
  if (context != nullptr) describeCallStack(*context, text);
  return text;
}

}  // namespace corvantis
