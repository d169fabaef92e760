#include "platform/files.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "support/temporary_folder.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using support::TemporaryFolder;

// A folder with drives C: (a folder), P: (a link) and the share \\farm\jobs.
class NativeFiles : public testing::Test {
 protected:
  NativeFiles() {
    fs::create_directories(folder_.path("drives/c:/out"));
    fs::create_directories(folder_.path("drives/unc/farm/jobs"));
    fs::create_directories(folder_.path("projects"));
    fs::create_directory_symlink(folder_.path("projects"), folder_.path("drives/p:"));
    ::setenv("CORVANTIS_DRIVES", folder_.path("drives").c_str(), 1);
  }
  ~NativeFiles() override { ::unsetenv("CORVANTIS_DRIVES"); }

  std::uint32_t errorOf(const std::u16string& path) { return files().attributes(path).errorNumber; }

  const TemporaryFolder folder_;
};

TEST_F(NativeFiles, WindowsPathsBecomeNativeOnes) {
  const std::string drives = folder_.path("drives");
  const std::vector<std::pair<std::u16string, std::string>> cases = {
      {u"C:\\out\\a.exr", drives + "/c:/out/a.exr"},
      {u"c:/out//a.exr", drives + "/c:/out/a.exr"},
      {u"C:", drives + "/c:"},
      {u"C:\\", drives + "/c:/"},
      {u"C:out\\", drives + "/c:/out/"},
      {u"C:\\a\\.\\b\\..\\c", drives + "/c:/a/c"},
      {u"C:\\..\\..\\x", drives + "/c:/x"},
      {u"\\\\farm\\jobs\\a.exr", drives + "/unc/farm/jobs/a.exr"},
      {u"//farm/jobs/../a.exr", drives + "/unc/farm/jobs/a.exr"},
      {u"\\renders\\a.exr", "/renders/a.exr"},
      {u"out\\a.exr", "out/a.exr"},
      {u"..\\a.exr", "../a.exr"},
      {u"/tmp/\u00e4\U0001F3A8.png", "/tmp/\xC3\xA4\xF0\x9F\x8E\xA8.png"},
      {u"", ""},
  };
  for (const auto& [windows, native] : cases) EXPECT_EQ(nativePath(windows), native);
}

TEST_F(NativeFiles, NativePathsBecomeWindowsOnesAndBack) {
  EXPECT_EQ(windowsPath("/renders/a.exr"), u"\\renders\\a.exr");
  EXPECT_EQ(windowsPath("out/a.exr"), u"out\\a.exr");
  EXPECT_EQ(windowsPath("//tmp/x"), u"\\tmp\\x");
  EXPECT_EQ(windowsPath("a\xFFz"), u"a\uFFFDz");
  EXPECT_EQ(nativePath(windowsPath(folder_.path())), folder_.path());
}

TEST_F(NativeFiles, DrivesAndSharesAreFoldersThatMustBeThere) {
  EXPECT_TRUE(files().attributes(u"C:\\").isDirectory);
  EXPECT_TRUE(files().attributes(u"P:\\").isDirectory);
  EXPECT_TRUE(files().attributes(u"\\\\farm\\jobs").isDirectory);
  const std::vector<std::pair<std::u16string, std::uint32_t>> failures = {
      {u"D:\\", error::kPathNotFound},
      {u"\\\\farm\\missing\\a.exr", error::kBadNetPath},
      {u"\\\\missing\\jobs\\a.exr", error::kBadNetPath},
      {u"\\\\farm", error::kBadNetPath},
      {u"\\\\..\\..\\a.exr", error::kBadNetPath},
      {u"C:\\out:a.exr", error::kInvalidName},
      {u"C:\\" + std::u16string(300, u'x'), error::kInvalidName},
  };
  for (const auto& [path, number] : failures) EXPECT_EQ(errorOf(path), number) << nativePath(path);
  EXPECT_EQ(files().copyFile(folder_.wide("gone.exr"), u"D:\\a.exr"), error::kPathNotFound);
  EXPECT_EQ(files().copyFile(folder_.wide("gone.exr"), u"\\\\farm\\missing\\a.exr"), error::kBadNetPath);
  EXPECT_EQ(openTextFile(u"D:\\corvantis.log"), nullptr);
}

TEST_F(NativeFiles, NativePathsMayHoldWhatWindowsForbids) {
  folder_.write("what?.exr", "pixels");
  EXPECT_EQ(errorOf(folder_.wide("what?.exr")), error::kSuccess);
}

TEST_F(NativeFiles, CreateDirectoryMakesNoDrive) {
  EXPECT_EQ(files().createDirectory(u"D:\\"), error::kPathNotFound);
  EXPECT_EQ(files().createDirectory(u"\\\\farm\\other"), error::kBadNetPath);
  EXPECT_FALSE(folder_.exists("drives/d:"));
  EXPECT_FALSE(folder_.exists("drives/unc/farm/other"));
}

TEST_F(NativeFiles, CopyThroughALinkKeepsTheLink) {
  folder_.write("source.exr", "new");
  folder_.write("elsewhere.exr", "old");
  fs::create_symlink(folder_.path("elsewhere.exr"), folder_.path("link.exr"));
  EXPECT_EQ(files().copyFile(folder_.wide("source.exr"), folder_.wide("link.exr")), error::kSuccess);
  EXPECT_TRUE(fs::is_symlink(folder_.path("link.exr")));
  EXPECT_EQ(folder_.read("elsewhere.exr"), "new");
}

TEST_F(NativeFiles, ErrorNumbersAreThoseOfWindows) {
  EXPECT_EQ(systemErrorText(error::kAccessDenied), u"Access is denied.");
  EXPECT_EQ(windowsErrorNumber(ENOSPC), error::kDiskFull);
  EXPECT_EQ(windowsErrorNumber(-1), 31U);
}

TEST_F(NativeFiles, AFileIsTheSameThroughEveryDriveButALinkIsItself) {
  folder_.write("projects/a.exr", "pixels");
  fs::create_directory_symlink(folder_.path("projects"), folder_.path("drives/q:"));
  fs::create_symlink("a.exr", folder_.path("projects/link.exr"));
  EXPECT_TRUE(files().isSameFile(u"P:\\a.exr", u"q:\\a.exr"));
  EXPECT_TRUE(files().isSameFile(u"P:\\a.exr", u"P:\\link.exr"));
  EXPECT_FALSE(files().isSameFile(u"P:\\link.exr", u"P:\\a.exr")) << "which stays when the link is deleted";
}

}  // namespace
}  // namespace platform
