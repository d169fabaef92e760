// Surroundings as this system describes them.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>

#include "platform/environment.h"
#include "platform/fault_guard.h"
#include "platform/files.h"
#include "platform/modules.h"
#include "platform/socket.h"
#include "support/environment.h"
#include "support/faults.h"
#include "support/temporary_folder.h"

namespace platform {
namespace {

TEST(NativeEnvironment, BytesThatAreNoTextAreReplaced) {
  const support::Environment odd("CORVANTIS_TEST_ODD", "/tmp/\xC3\xA4\xFF");
  EXPECT_EQ(environmentVariable(u"CORVANTIS_TEST_ODD"), u"/tmp/\u00E4\uFFFD");
}

// How many descriptors a program finds open that is started now, as a script may start one.
int descriptorsOfAChild() {
  std::FILE* const child = ::popen("ls /proc/self/fd | wc -l", "r");
  int count = 0;
  EXPECT_EQ(std::fscanf(child, "%d", &count), 1);
  EXPECT_EQ(::pclose(child), 0);
  return count;
}

TEST(NativeEnvironment, ProgramsStartedMeanwhileInheritNeitherConnectionNorLog) {
  const support::TemporaryFolder folder;
  const int before = descriptorsOfAChild();
  const SocketHandle stream = openSocket(SocketType::stream), datagram = openSocket(SocketType::datagram);
  const std::unique_ptr<TextFile> log = openTextFile(folder.wide("log"));
  ASSERT_TRUE(stream != kInvalidSocket && datagram != kInvalidSocket && log);
  EXPECT_EQ(descriptorsOfAChild(), before);
  closeSocket(stream);
  closeSocket(datagram);
}

TEST(NativeEnvironment, CommonDataFolderThatCannotBeIsNone) {
  const support::TemporaryFolder folder;
  const support::Environment chosen("CORVANTIS_COMMON_APPDATA", folder.write("file", "") + "/below");
  EXPECT_EQ(commonApplicationDataFolder(), u"");
}

// The two zones are 26 hours apart: no file has the same date in both.
TEST(NativeModules, DatesAreLocalWhereverTheGuardBegan) {
  const auto written = std::chrono::file_clock::to_sys(std::filesystem::last_write_time("/proc/self/exe"));
  const struct {
    const char* zone;
    std::chrono::hours fromUtc;
  } rows[] = {{"<+14>-14", std::chrono::hours(14)}, {"<-12>12", std::chrono::hours(-12)}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.zone);
    const support::Environment zone("TZ", row.zone);
    FileDate date;
    const auto filter = [](void* found, const FaultContext& fault) {
      return lastWriteDate(fault.address, *static_cast<FileDate*>(found));
    };
    ASSERT_NE(runGuarded([](void*) { support::divideIntegerByZero(); }, nullptr, filter, &date), 0U);
    const std::chrono::year_month_day expected{std::chrono::floor<std::chrono::days>(written + row.fromUtc)};
    EXPECT_EQ((std::chrono::year_month_day{std::chrono::year(date.year),
                                           std::chrono::month(static_cast<unsigned>(date.month)),
                                           std::chrono::day(static_cast<unsigned>(date.day))}),
              expected);
  }
}

TEST(NativeModules, ProgramsAndLibrariesHaveThePathsThatTheSystemNames) {
  const auto pathOf = [](const ModuleAt& module) {
    return std::filesystem::path(nativePath(windowsPath(module.path.data())));
  };
  ModuleAt program;
  findProgram(program);
  EXPECT_EQ(pathOf(program), std::filesystem::read_symlink("/proc/self/exe"));
  ModuleAt library;
  ASSERT_TRUE(findModule(reinterpret_cast<std::uintptr_t>(&std::abort), library));
  EXPECT_NE(pathOf(library), pathOf(program));
  EXPECT_TRUE(std::filesystem::exists(pathOf(library)));
  FileDate date;
  EXPECT_TRUE(lastWriteDate(reinterpret_cast<std::uintptr_t>(&std::abort), date));
}

}  // namespace
}  // namespace platform
