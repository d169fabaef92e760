// What a guard asks of Windows for the filter of a stack overflow. Wine takes it down and does not keep it.
#include <gtest/gtest.h>
#include <windows.h>

#include "platform/fault_guard.h"

namespace {

TEST(Win32FaultGuard, KeepsStackForTheFilterOnTheGuardingThread) {
  platform::runGuarded(
      [](void*) {
        ULONG kept = 0;
        ASSERT_NE(::SetThreadStackGuarantee(&kept), 0);
        EXPECT_GE(kept, 64U * 1024);
      },
      nullptr, [](void*, const platform::FaultContext&) { return true; }, nullptr);
}

}  // namespace
