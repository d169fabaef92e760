#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>

#include "platform/environment.h"
#include "platform/files.h"
#include "platform/modules.h"
#include "support/environment.h"
#include "support/faults.h"
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

TEST(Environment, CommonDataFolderIsMade) {
  const support::TemporaryFolder folder;
  const support::Environment chosen("CORVANTIS_COMMON_APPDATA", folder.path("shared/data/"));
  const std::u16string common = commonApplicationDataFolder();
  ASSERT_FALSE(common.empty());
  EXPECT_TRUE(files().attributes(common).isDirectory);
  if (!support::kIsWindows) {  // which has a folder of its own
    EXPECT_EQ(common, folder.wide("shared/data"));
  }
}

TEST(Environment, MachinesAndThreadsAreToldApartAndPumpingIsCounted) {
  EXPECT_FALSE(computerName().empty());
  std::uint32_t other = 0;
  std::thread([&] { other = currentThreadId(); }).join();
  EXPECT_NE(currentThreadId(), other);
  EXPECT_EQ(currentThreadId(), currentThreadId());
  const std::uint64_t before = pumpCount();
  pumpMessages();
  EXPECT_EQ(pumpCount(), before + 1);
}

std::uintptr_t ownCode() { return reinterpret_cast<std::uintptr_t>(&ownCode); }

TEST(Modules, OwnCodeIsTheProgramsAndItsFileHasADate) {
  ModuleAt program;
  findProgram(program);
  ModuleAt found;
  ASSERT_TRUE(findModule(ownCode(), found));
  EXPECT_STREQ(found.path.data(), program.path.data());
  EXPECT_EQ(std::memcmp(reinterpret_cast<const char*>(found.base), support::kIsWindows ? "MZ" : "\177ELF", 2), 0);
  EXPECT_FALSE(findModule(support::kUnmappedAddress, found));

  const std::filesystem::path file = nativePath(windowsPath(program.path.data()));
  EXPECT_EQ(file.stem(), "test_platform");
  const auto written = std::chrono::file_clock::to_sys(std::filesystem::last_write_time(file));
  const std::time_t seconds =
      std::chrono::system_clock::to_time_t(std::chrono::time_point_cast<std::chrono::seconds>(written));
  const std::tm local = *std::localtime(&seconds);
  FileDate date;
  ASSERT_TRUE(lastWriteDate(ownCode(), date));
  EXPECT_EQ((std::array{date.month, date.day, date.year}),
            (std::array{local.tm_mon + 1, local.tm_mday, local.tm_year + 1900}));
  EXPECT_FALSE(lastWriteDate(support::kUnmappedAddress, date));
}

}  // namespace
}  // namespace platform
