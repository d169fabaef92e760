#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/environment.h"
#include "platform/files.h"
#include "platform/modules.h"
#include "support/environment.h"
#include "support/platform_kind.h"
#include "support/temporary_folder.h"

namespace platform {
namespace {

TEST(Environment, TellsUnsetFromEmpty) {
  EXPECT_EQ(environmentVariable(u"CORVANTIS_TEST_UNSET"), std::nullopt);
  const support::Environment empty("CORVANTIS_TEST_EMPTY", "");
  EXPECT_EQ(environmentVariable(u"CORVANTIS_TEST_EMPTY"), u"");
  const support::Environment text("CORVANTIS_TEST_TEXT", "/tmp/\xC3\xA4");
  EXPECT_EQ(environmentVariable(u"CORVANTIS_TEST_TEXT"), u"/tmp/\u00E4");
}

TEST(Environment, CommonDataFolderIsThere) {
  const support::TemporaryFolder folder;
  const support::Environment chosen("CORVANTIS_COMMON_APPDATA", folder.path("shared/data/"));
  const std::u16string common = commonApplicationDataFolder();
  ASSERT_FALSE(common.empty());
  EXPECT_TRUE(files().attributes(common).isDirectory);
  if (!support::kIsWindows) {  // which has a folder of its own
    EXPECT_EQ(common, folder.wide("shared/data"));
  }
}

TEST(Environment, MachinesHaveNames) { EXPECT_FALSE(computerName().empty()); }

TEST(Environment, ThreadsHaveNumbersAndPumpingIsCounted) {
  std::uint32_t other = 0;
  std::thread([&] { other = currentThreadId(); }).join();
  EXPECT_NE(currentThreadId(), other);
  EXPECT_EQ(currentThreadId(), currentThreadId());
  const std::uint64_t before = pumpCount();
  pumpMessages();
  EXPECT_EQ(pumpCount(), before + 1);
}

TEST(Modules, ListBeginsWithTheProgramAndHoldsItsCode) {
  const std::vector<Module> modules = loadedModules();
  ASSERT_GT(modules.size(), 1U);
  EXPECT_EQ(modules.front().path, programPath());
  EXPECT_TRUE(std::filesystem::exists(nativePath(programPath())));
  const auto code = reinterpret_cast<std::uintptr_t>(&loadedModules);
  EXPECT_GE(code, modules.front().base);
  EXPECT_LT(code, modules.front().base + modules.front().size);
}

TEST(Modules, FoundModuleIsTheListedOne) {
  const std::vector<Module> modules = loadedModules();
  const auto code = reinterpret_cast<std::uintptr_t>(&std::abort);
  ModuleAt found;
  ASSERT_TRUE(findModule(code, found));
  const auto listed = std::find_if(modules.begin(), modules.end(), [&](const Module& module) {
    return code >= module.base && code < module.base + module.size;
  });
  ASSERT_NE(listed, modules.end());
  EXPECT_EQ(listed->path, windowsPath(found.path.data()));
  EXPECT_EQ(listed->base, found.base);
}

TEST(Modules, LastWriteDateIsLocalTime) {
  const support::TemporaryFolder folder;
  const std::string file = folder.write("plugin.dll", "");
  // Noon of 29 February 2024 UTC is the same day nearly everywhere.
  const auto noon =
      std::chrono::sys_seconds(std::chrono::sys_days(std::chrono::year(2024) / 2 / 29)) + std::chrono::hours(12);
  std::filesystem::last_write_time(file, std::chrono::file_clock::from_sys(noon));
  FileDate date;
  ASSERT_TRUE(lastWriteDate(folder.wide("plugin.dll"), date));
  EXPECT_EQ(date.month, 2);
  EXPECT_EQ(date.day, 29);
  EXPECT_EQ(date.year, 2024);
  EXPECT_FALSE(lastWriteDate(folder.wide("gone.dll"), date));
}

}  // namespace
}  // namespace platform
