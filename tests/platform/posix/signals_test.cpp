// What guards do with signals and mappings, which only a POSIX system has.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <csetjmp>
#include <csignal>
#include <cstdlib>
#include <thread>

#include "platform/fault_guard.h"
#include "support/faults.h"
#include "support/temporary_folder.h"

namespace {

namespace fault = platform::fault;

bool accept(void*, const platform::FaultContext&) { return true; }
bool decline(void*, const platform::FaultContext&) { return false; }

std::uint32_t guarded(void (*work)(void*), platform::FaultFilter filter = accept, void* argument = nullptr) {
  return platform::runGuarded(work, argument, filter, nullptr);
}

// Earlier handlers that leave their fault behind, as a crash reporter does not and a test must.
sigjmp_buf escape;
volatile std::sig_atomic_t calls = 0;
volatile std::sig_atomic_t lastCode = 0;

void plainHandler(int) {
  calls = calls + 1;
  siglongjmp(escape, 1);
}

void detailedHandler(int, siginfo_t* info, void*) {
  lastCode = info->si_code;
  plainHandler(0);
}

class EarlierHandler {
 public:
  EarlierHandler(int signal, bool detailed) : signal_(signal) {
    struct sigaction action {};
    if (detailed) {
      action.sa_flags = SA_SIGINFO;
      action.sa_sigaction = detailedHandler;
    } else {
      action.sa_handler = plainHandler;
    }
    calls = 0;
    lastCode = 0;
    ::sigaction(signal_, &action, &previous_);
  }
  ~EarlierHandler() { ::sigaction(signal_, &previous_, nullptr); }
  EarlierHandler(const EarlierHandler&) = delete;
  EarlierHandler& operator=(const EarlierHandler&) = delete;

 private:
  int signal_;
  struct sigaction previous_ {};
};

// The outer guard still stands when a handler jumps out of an inner one, which knows nothing of it.
TEST(PosixFaultGuard, EarlierHandlersTakeWhatNoGuardDoes) {
  const struct {
    const char* name;
    int signal;
    bool detailed;
    platform::FaultFilter filter;
    void (*work)(void*);
    int code;
  } cases[] = {
      {"on another thread", SIGSEGV, true, accept,
       [](void*) {
         std::thread([] {
           if (sigsetjmp(escape, 1) == 0) support::writeToNull();
         }).join();
       },
       SEGV_MAPERR},
      {"sent", SIGSEGV, true, accept,
       [](void*) {
         if (sigsetjmp(escape, 1) == 0) ::raise(SIGSEGV);
       },
       SI_TKILL},
      {"declined", SIGFPE, false, decline,
       [](void*) {
         if (sigsetjmp(escape, 1) == 0) guarded([](void*) { support::divideIntegerByZero(); }, decline);
       },
       0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const EarlierHandler earlier(c.signal, c.detailed);
    EXPECT_EQ(guarded(c.work, c.filter), 0U);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(lastCode, c.code);
  }
}

TEST(PosixFaultGuard, HandlersStackAndMaskAreBackWhenTheLastGuardEnds) {
  const EarlierHandler earlier(SIGBUS, false);
  stack_t before{};
  ::sigaltstack(nullptr, &before);
  guarded([](void*) { guarded([](void*) { support::writeToNull(); }); });
  struct sigaction action {};
  ::sigaction(SIGBUS, nullptr, &action);
  EXPECT_EQ(action.sa_handler, &plainHandler);
  stack_t after{};
  ::sigaltstack(nullptr, &after);
  EXPECT_EQ(after.ss_sp, before.ss_sp);
  EXPECT_EQ(after.ss_flags, before.ss_flags);
  sigset_t mask;
  ::pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) EXPECT_EQ(sigismember(&mask, signal), 0) << signal;
}

TEST(PosixFaultGuard, HandlerInstalledInsideTheGuardIsLeftAlone) {
  struct sigaction mine {};
  mine.sa_handler = plainHandler;
  struct sigaction original {};
  ::sigaction(SIGILL, nullptr, &original);
  guarded([](void* action) { ::sigaction(SIGILL, static_cast<struct sigaction*>(action), nullptr); }, accept, &mine);
  struct sigaction action {};
  ::sigaction(SIGILL, &original, &action);
  EXPECT_EQ(action.sa_handler, &plainHandler);
}

// A library that takes the fault signal in the middle of guarded work and hands on what it does not want.
struct sigaction handedTo;
volatile std::sig_atomic_t librarysCalls = 0;

void chainingHandler(int signal, siginfo_t* info, void* context) {
  librarysCalls = librarysCalls + 1;
  if ((handedTo.sa_flags & SA_SIGINFO) != 0)
    handedTo.sa_sigaction(signal, info, context);
  else
    handedTo.sa_handler(signal);
}

void takeSignal(int signal) {
  struct sigaction library {};
  library.sa_sigaction = chainingHandler;
  library.sa_flags = SA_SIGINFO;
  librarysCalls = 0;
  ::sigaction(signal, &library, &handedTo);
}

TEST(PosixFaultGuard, TakesSignalsBackFromALibraryAndHandsEachOnOnlyOnce) {
  for (int round = 0; round < 3; ++round) {  // the library's handler stays in place from round to round, as ours does
    const EarlierHandler earlier(SIGFPE, false);
    bool ended = false;
    guarded(
        [](void* reached) {
          takeSignal(SIGFPE);
          EXPECT_EQ(guarded([](void*) { support::divideIntegerByZero(); }), fault::kIntegerDivideByZero);
          EXPECT_EQ(librarysCalls, 0);
          if (sigsetjmp(escape, 1) == 0) guarded([](void*) { support::divideIntegerByZero(); }, decline);
          EXPECT_EQ(librarysCalls, 1);
          EXPECT_EQ(calls, 1);
          *static_cast<bool*>(reached) = true;
        },
        decline, &ended);
    EXPECT_TRUE(ended);
    struct sigaction action {};
    ::sigaction(SIGFPE, nullptr, &action);
    EXPECT_EQ(action.sa_sigaction, &chainingHandler);  // as if no guard had been
  }
}

// A witness's place to write to: it may not allocate.
struct {
  int told = 0;
  platform::FaultContext last;
} unguarded;

TEST(PosixFaultGuard, TellsItsWitnessOfFaultsOnThreadsWithoutAGuardBeforeTheyGoOn) {
  const EarlierHandler earlier(SIGSEGV, true);
  unguarded = {};
  platform::tellUnguardedFaults([](const platform::FaultContext& context) {
    unguarded = {unguarded.told + 1, context};
    EXPECT_EQ(calls, 0);
  });
  guarded(
      [](void*) {
        EXPECT_EQ(guarded([](void*) { support::writeToNull(); }), fault::kAccessViolation);
        if (sigsetjmp(escape, 1) == 0) guarded([](void*) { support::readFromNull(); }, decline);
        EXPECT_EQ(unguarded.told, 0);
        calls = 0;
        std::thread([] {
          if (sigsetjmp(escape, 1) == 0) support::writeToNull();
        }).join();
      },
      decline);
  platform::tellUnguardedFaults(nullptr);
  EXPECT_EQ(unguarded.told, 1);
  EXPECT_EQ(unguarded.last.code, fault::kAccessViolation);
  EXPECT_EQ(unguarded.last.info, (std::array<std::uintptr_t, 2>{1, 0}));
  EXPECT_EQ(calls, 1);
}

TEST(PosixFaultGuard, NothingCanLieBelowTheStackOfTheFilter) {
  guarded([](void*) {
    stack_t stack{};
    ::sigaltstack(nullptr, &stack);
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    char* const below = static_cast<char*>(stack.ss_sp) - page;
    void* const neighbour = ::mmap(below, page, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
    EXPECT_EQ(neighbour, MAP_FAILED);
    char byte = 0;
    EXPECT_EQ(platform::readMemory(reinterpret_cast<std::uintptr_t>(stack.ss_sp) - 1, &byte, 1), 0U);
  });
}

TEST(PosixFaultGuardDeathTest, WhatNoFilterTakesEndsTheProcessByItsSignal) {
  const struct {
    const char* name;
    int signal;
    void (*work)();
  } cases[] = {
      {"declined", SIGFPE, [] { guarded([](void*) { support::divideIntegerByZero(); }, decline); }},
      {"sent", SIGSEGV, [] { guarded([](void*) { ::raise(SIGSEGV); }); }},
      {"inside the filter", SIGSEGV,
       [] {
         guarded([](void*) { support::writeToNull(); },
                 [](void*, const platform::FaultContext&) {
                   support::writeToNull();
                   return true;
                 });
       }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EXIT(
        {
          ::signal(c.signal, SIG_DFL);
          c.work();
        },
        testing::KilledBySignal(c.signal), "");
  }
}

TEST(PosixFaultGuard, FileThatShrankUnderItsMappingIsAnInPageError) {
  const support::TemporaryFolder folder;
  const std::string name = folder.write("texture.bin", "x");
  const int fd = ::open(name.c_str(), O_RDWR | O_CLOEXEC);
  const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  void* const mapped = ::mmap(nullptr, page, PROT_READ, MAP_SHARED, fd, 0);
  ASSERT_NE(mapped, MAP_FAILED);
  ASSERT_EQ(::ftruncate(fd, 0), 0);
  const std::uint32_t code =
      guarded([](void* address) { (void)*static_cast<volatile char*>(address); }, accept, mapped);
  EXPECT_EQ(code, fault::kInPageError);
  ::munmap(mapped, page);
  ::close(fd);
}

}  // namespace
