#include "platform/posix/signal_fault.h"

#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace platform::posix {
namespace {

struct Registers {
  std::uintptr_t instruction;
  std::uintptr_t stack;
  std::uintptr_t frame;
  bool isWrite;
};

#if defined(__x86_64__)

constexpr greg_t kWriteBit = 2;  // of the page-fault error code

Registers registersOf(const ucontext_t& context) {
  const auto& all = context.uc_mcontext.gregs;
  const auto at = [&](int index) { return static_cast<std::uintptr_t>(all[index]); };
  return {at(REG_RIP), at(REG_RSP), at(REG_RBP), (all[REG_ERR] & kWriteBit) != 0};
}

// The float exceptions that are raised and not masked, as bits in the order of the control words.
unsigned pendingFloatExceptions(const ucontext_t& context) {
  const fpregset_t state = context.uc_mcontext.fpregs;
  if (state == nullptr) return 0;
  constexpr greg_t kSimdTrap = 19;
  if (context.uc_mcontext.gregs[REG_TRAPNO] == kSimdTrap) return state->mxcsr & ~(state->mxcsr >> 7U) & 0x3FU;
  return state->swd & ~static_cast<unsigned>(state->cwd) & 0x7FU;
}

// The kernel has one number for underflow and denormal operand, and one for invalid operation and x87 stack faults.
bool isDenormalOperand(const ucontext_t& context) { return (pendingFloatExceptions(context) & 0x12U) == 0x02U; }
bool isFloatStackFault(const ucontext_t& context) { return (pendingFloatExceptions(context) & 0x40U) != 0; }

// A privileged instruction in user mode is a general-protection fault like many others: its opcode tells it.
bool isPrivilegedInstruction(std::uintptr_t address) {
  std::array<unsigned char, 2> code{};
  const std::size_t count = readMemory(address, code.data(), code.size());
  constexpr std::array<unsigned char, 15> kOneByte = {0x6C, 0x6D, 0x6E, 0x6F, 0xE4, 0xE5, 0xE6, 0xE7,
                                                      0xEC, 0xED, 0xEE, 0xEF, 0xF4, 0xFA, 0xFB};
  constexpr std::array<unsigned char, 10> kAfter0F = {0x06, 0x08, 0x09, 0x20, 0x21, 0x22, 0x23, 0x30, 0x32, 0x33};
  const auto contains = [](const auto& list, unsigned char byte) {
    return std::find(list.begin(), list.end(), byte) != list.end();
  };
  if (count < 1) return false;
  return contains(kOneByte, code[0]) || (count > 1 && code[0] == 0x0F && contains(kAfter0F, code[1]));
}

#elif defined(__aarch64__)

// Every access counts as a read here: the syndrome register is not looked into.
Registers registersOf(const ucontext_t& context) {
  const mcontext_t& all = context.uc_mcontext;
  return {all.pc, all.sp, all.regs[29], false};
}

bool isDenormalOperand(const ucontext_t&) { return false; }
bool isFloatStackFault(const ucontext_t&) { return false; }
bool isPrivilegedInstruction(std::uintptr_t) { return false; }

#else
#error "no register layout for this processor"
#endif

// Wherever the stack is intact the memory around the stack pointer is there; a frame that is larger than that touches
// the guard region first.
bool isStackOverflow(std::uintptr_t address, std::uintptr_t stackPointer, const StackGuardRegion& guardRegion) {
  constexpr std::uintptr_t kReach = std::uintptr_t{64} * 1024;
  constexpr std::uintptr_t kPage = 4096;
  const bool nearStackPointer = address + kReach >= stackPointer && address < stackPointer + kPage;
  return nearStackPointer || (address >= guardRegion.begin && address < guardRegion.end);
}

std::uint32_t floatCode(const siginfo_t& info, const ucontext_t& context) {
  switch (info.si_code) {
    case FPE_INTDIV:
      return fault::kIntegerDivideByZero;
    case FPE_INTOVF:
      return fault::kIntegerOverflow;
    case FPE_FLTDIV:
      return fault::kFloatDivideByZero;
    case FPE_FLTOVF:
      return fault::kFloatOverflow;
    case FPE_FLTUND:
      return isDenormalOperand(context) ? fault::kFloatDenormalOperand : fault::kFloatUnderflow;
    case FPE_FLTRES:
      return fault::kFloatInexactResult;
    case FPE_FLTSUB:
      return fault::kArrayBoundsExceeded;
    default:
      return isFloatStackFault(context) ? fault::kFloatStackCheck : fault::kFloatInvalidOperation;
  }
}

void setAccess(FaultContext& fault, std::uint32_t code, bool isWrite, std::uintptr_t address) {
  fault.code = code;
  fault.info = {isWrite ? 1U : 0U, address};
  fault.hasInfo = true;
}

void translateAccess(int signal, const siginfo_t& info, const Registers& registers, const StackGuardRegion& guardRegion,
                     FaultContext& fault) {
  const auto address = reinterpret_cast<std::uintptr_t>(info.si_addr);
  if (info.si_code == SI_KERNEL) {
    if (isPrivilegedInstruction(registers.instruction)) {
      fault.code = fault::kPrivilegedInstruction;
    } else {
      setAccess(fault, fault::kAccessViolation, false, ~std::uintptr_t{0});
    }
  } else if (signal == SIGBUS && info.si_code == BUS_ADRALN) {
    fault.code = fault::kDatatypeMisalignment;
  } else if (signal == SIGBUS) {
    setAccess(fault, fault::kInPageError, registers.isWrite, address);
  } else if (info.si_code == SEGV_BNDERR) {
    fault.code = fault::kArrayBoundsExceeded;
  } else if (isStackOverflow(address, registers.stack, guardRegion)) {
    fault.code = fault::kStackOverflow;
  } else {
    setAccess(fault, fault::kAccessViolation, registers.isWrite, address);
  }
}

}  // namespace

bool isMachineFault(const siginfo_t& info) { return info.si_code > 0; }

FaultContext translateFault(int signal, const siginfo_t& info, const ucontext_t& context,
                            const StackGuardRegion& guardRegion) {
  const Registers registers = registersOf(context);
  FaultContext fault;
  fault.address = registers.instruction;
  fault.framePointer = registers.frame;
  if (signal == SIGFPE) {
    fault.code = floatCode(info, context);
  } else if (signal == SIGILL) {
    const bool privileged = info.si_code == ILL_PRVOPC || info.si_code == ILL_PRVREG;
    fault.code = privileged ? fault::kPrivilegedInstruction : fault::kIllegalInstruction;
  } else {
    translateAccess(signal, info, registers, guardRegion, fault);
  }
  return fault;
}

StackGuardRegion currentStackGuardRegion() {
  // The kernel keeps this much free below a stack that grows by itself, as the first thread's does.
  constexpr std::size_t kGap = std::size_t{256} * 4096;
  static thread_local const StackGuardRegion region = [] {
    pthread_attr_t attributes;
    if (::pthread_getattr_np(::pthread_self(), &attributes) != 0) return StackGuardRegion{};
    void* lowest = nullptr;
    std::size_t size = 0;
    std::size_t guard = 0;
    ::pthread_attr_getstack(&attributes, &lowest, &size);
    ::pthread_attr_getguardsize(&attributes, &guard);
    ::pthread_attr_destroy(&attributes);
    if (::getpid() == ::gettid()) guard = kGap;
    const auto end = reinterpret_cast<std::uintptr_t>(lowest);
    return StackGuardRegion{end - std::min<std::uintptr_t>(guard, end), end};
  }();
  return region;
}

}  // namespace platform::posix
