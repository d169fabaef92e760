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
#include "support/temporary_folder.h"

namespace platform {
namespace {

class Variable {
 public:
  Variable(const char* name, const std::string& value) : name_(name) { ::setenv(name, value.c_str(), 1); }
  ~Variable() { ::unsetenv(name_); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  const char* name_;
};

TEST(Environment, TellsUnsetFromEmptyAndReplacesWhatIsNotText) {
  EXPECT_EQ(environmentVariable(u"CORVANTIS_TEST_UNSET"), std::nullopt);
  const Variable empty("CORVANTIS_TEST_EMPTY", "");
  EXPECT_EQ(environmentVariable(u"CORVANTIS_TEST_EMPTY"), u"");
  const Variable odd("CORVANTIS_TEST_ODD", "/tmp/\xC3\xA4\xFF");
  EXPECT_EQ(environmentVariable(u"CORVANTIS_TEST_ODD"), u"/tmp/\u00E4\uFFFD");
}

TEST(Environment, CommonDataFolderIsCreated) {
  const support::TemporaryFolder folder;
  const Variable chosen("CORVANTIS_COMMON_APPDATA", folder.path("shared/data/"));
  EXPECT_EQ(commonApplicationDataFolder(), folder.wide("shared/data"));
  EXPECT_TRUE(std::filesystem::is_directory(folder.path("shared/data")));
}

TEST(Environment, CommonDataFolderThatCannotBeIsNone) {
  const support::TemporaryFolder folder;
  const Variable chosen("CORVANTIS_COMMON_APPDATA", folder.write("file", "") + "/below");
  EXPECT_EQ(commonApplicationDataFolder(), u"");
}

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
  EXPECT_EQ(nativePath(programPath()), std::filesystem::read_symlink("/proc/self/exe").string());
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
