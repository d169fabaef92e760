// Surroundings as this system describes them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "platform/environment.h"
#include "platform/files.h"
#include "platform/modules.h"
#include "support/environment.h"
#include "support/temporary_folder.h"

namespace platform {
namespace {

TEST(NativeEnvironment, BytesThatAreNoTextAreReplaced) {
  const support::Environment odd("CORVANTIS_TEST_ODD", "/tmp/\xC3\xA4\xFF");
  EXPECT_EQ(environmentVariable(u"CORVANTIS_TEST_ODD"), u"/tmp/\u00E4\uFFFD");
}

TEST(NativeEnvironment, CommonDataFolderThatCannotBeIsNone) {
  const support::TemporaryFolder folder;
  const support::Environment chosen("CORVANTIS_COMMON_APPDATA", folder.write("file", "") + "/below");
  EXPECT_EQ(commonApplicationDataFolder(), u"");
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
