// Surroundings as this system describes them.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

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

TEST(NativeEnvironment, CommonDataFolderIsCreated) {
  const support::TemporaryFolder folder;
  const support::Environment chosen("CORVANTIS_COMMON_APPDATA", folder.path("shared/data/"));
  EXPECT_EQ(commonApplicationDataFolder(), folder.wide("shared/data"));
  EXPECT_TRUE(std::filesystem::is_directory(folder.path("shared/data")));
}

TEST(NativeEnvironment, CommonDataFolderThatCannotBeIsNone) {
  const support::TemporaryFolder folder;
  const support::Environment chosen("CORVANTIS_COMMON_APPDATA", folder.write("file", "") + "/below");
  EXPECT_EQ(commonApplicationDataFolder(), u"");
}

TEST(NativeModules, ProgramIsTheOneThatTheSystemNames) {
  EXPECT_EQ(nativePath(programPath()), std::filesystem::read_symlink("/proc/self/exe").string());
}

}  // namespace
}  // namespace platform
