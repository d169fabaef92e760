// What happens between a fault and the end of its trapped call touches nothing that the fault may have left broken or
// locked. This file stands in the way of the calls in question, for the whole test program.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>

#include "plugin/job/trapped_call.h"
#include "support/faults.h"
#include "support/log_capture.h"

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // which allocate at a jump themselves

namespace {

// Of this thread: the first of the calls below while the wire is up. Volatile, for the compiler knows that the real
// allocation functions read neither.
thread_local volatile bool isUp = false;
thread_local const char* volatile tripped = nullptr;

void touch(const char* what) {
  if (isUp && tripped == nullptr) tripped = what;
}

}  // namespace

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void __libc_free(void* memory);

void* malloc(std::size_t size) {
  touch("malloc");
  return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
  touch("calloc");
  return __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) {
  touch("realloc");
  return __libc_realloc(memory, size);
}
void free(void* memory) {
  touch("free");
  __libc_free(memory);
}
}

extern "C" std::tm* localtime_r(const std::time_t* moment, std::tm* local) {
  touch("localtime_r");
  static const auto real = reinterpret_cast<decltype(&localtime_r)>(::dlsym(RTLD_NEXT, "localtime_r"));
  return real(moment, local);
}

namespace corvantis {
namespace {

using namespace testing;

TEST(FaultFilter, NeitherAllocatesNorAsksForTheTimeZoneUntilTheTrappedCallHasEnded) {
  JobState job;
  const support::LogCapture log;
  for (void (*fault)() : {support::writeToNull, support::callUnmapped, +[] { support::overflowStack(); }}) {
    tripped = nullptr;
    const Trapped<int> outcome = trappedCall(job, "Trapped SEH Exception in CurRendererRenderFrame(): ", 0, [&] {
      isUp = true;
      fault();
      return 1;
    });
    isUp = false;
    EXPECT_STREQ(tripped, nullptr);
    EXPECT_TRUE(outcome.faulted());
    EXPECT_THAT(job.crashDescription, HasSubstr("\nCall Stack:"));
  }
}

TEST(FaultFilter, WouldBeSeenToDoSo) {
  tripped = nullptr;
  isUp = true;
  void* volatile memory = std::malloc(1);
  std::free(memory);
  isUp = false;
  EXPECT_STREQ(tripped, "malloc");
  tripped = nullptr;
  isUp = true;
  const std::time_t now = 0;
  std::tm local{};
  ::localtime_r(&now, &local);
  isUp = false;
  EXPECT_STREQ(tripped, "localtime_r");
}

}  // namespace
}  // namespace corvantis

#endif

namespace corvantis {
namespace {

using namespace testing;

TEST(FaultFilterDeathTest, FaultOnAThreadWithoutAGuardIsDescribedInTheLogAndEndsTheProcess) {
  const support::TemporaryFolder folder;
  const std::string path = folder.path("log");
  EXPECT_EXIT(
      {
        ::signal(SIGSEGV, SIG_DFL);
        JobState job;
        log_file.close();
        log_file.open(platform::windowsPath(path));
        trappedCall(job, "", [] { std::thread([] { support::writeToNull(); }).join(); });
      },
      testing::KilledBySignal(SIGSEGV), "");
  EXPECT_THAT(folder.readText("log"),
              AllOf(StartsWith("Fault on a thread that no trapped call guards: Access Violation\nProcess:  "),
                    HasSubstr("\nWrite Address:  00000000\n"), HasSubstr("\nCall Stack:\n"), EndsWith("\n")));
}

}  // namespace
}  // namespace corvantis
