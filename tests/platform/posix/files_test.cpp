#include "platform/files.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/fake_files.h"
#include "support/temporary_folder.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using support::TemporaryFolder;

// A folder with drives C: (a folder), P: (a link) and the share \\farm\jobs.
class Files : public testing::Test {
 protected:
  Files() {
    fs::create_directories(folder_.path("drives/c:/out"));
    fs::create_directories(folder_.path("drives/unc/farm/jobs"));
    fs::create_directories(folder_.path("projects"));
    fs::create_directory_symlink(folder_.path("projects"), folder_.path("drives/p:"));
    ::setenv("CORVANTIS_DRIVES", folder_.path("drives").c_str(), 1);
  }
  ~Files() override { ::unsetenv("CORVANTIS_DRIVES"); }

  std::uint32_t errorOf(const std::u16string& path) { return files().attributes(path).errorNumber; }

  const TemporaryFolder folder_;
};

TEST_F(Files, WindowsPathsBecomeNativeOnes) {
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

TEST_F(Files, NativePathsBecomeWindowsOnesAndBack) {
  EXPECT_EQ(windowsPath("/renders/a.exr"), u"\\renders\\a.exr");
  EXPECT_EQ(windowsPath("out/a.exr"), u"out\\a.exr");
  EXPECT_EQ(windowsPath("//tmp/x"), u"\\tmp\\x");
  EXPECT_EQ(windowsPath("a\xFFz"), u"a\uFFFDz");
  EXPECT_EQ(nativePath(windowsPath(folder_.path())), folder_.path());
}

TEST_F(Files, AttributesTellFilesFoldersAndWhyNot) {
  folder_.write("drives/c:/out/a.exr", "pixels");
  EXPECT_EQ(errorOf(u"C:\\out\\a.exr"), error::kSuccess);
  EXPECT_FALSE(files().attributes(u"C:\\out\\a.exr").isDirectory);
  EXPECT_TRUE(files().attributes(u"C:\\out").isDirectory);
  EXPECT_TRUE(files().attributes(u"C:\\").isDirectory);
  EXPECT_TRUE(files().attributes(u"P:\\").isDirectory);
  const std::vector<std::pair<std::u16string, std::uint32_t>> failures = {
      {u"C:\\out\\missing.exr", error::kFileNotFound},
      {u"C:\\missing\\a.exr", error::kPathNotFound},
      {u"C:\\out\\a.exr\\below", error::kPathNotFound},
      {u"D:\\a.exr", error::kPathNotFound},
      {u"D:\\", error::kPathNotFound},
      {u"", error::kPathNotFound},
      {u"\\\\farm\\missing\\a.exr", error::kBadNetPath},
      {u"\\\\missing\\jobs\\a.exr", error::kBadNetPath},
      {u"\\\\farm", error::kBadNetPath},
      {u"\\\\..\\..\\a.exr", error::kBadNetPath},
      {u"C:\\out\\a?.exr", error::kInvalidName},
      {u"C:\\out:a.exr", error::kInvalidName},
      {u"C:\\out\\tab\t.exr", error::kInvalidName},
      {std::u16string(u"\\tmp\\a\0b", 8), error::kInvalidName},
      {u"C:\\" + std::u16string(300, u'x'), error::kInvalidName},
  };
  for (const auto& [path, number] : failures) EXPECT_EQ(errorOf(path), number) << nativePath(path);
}

TEST_F(Files, NativePathsMayHoldWhatWindowsForbids) {
  folder_.write("what?.exr", "pixels");
  EXPECT_EQ(errorOf(folder_.wide("what?.exr")), error::kSuccess);
}

TEST_F(Files, CreateDirectoryMakesOneFolderAndNoDrive) {
  EXPECT_EQ(files().createDirectory(u"C:\\new"), error::kSuccess);
  EXPECT_TRUE(fs::is_directory(folder_.path("drives/c:/new")));
  EXPECT_EQ(files().createDirectory(u"C:\\new"), error::kAlreadyExists);
  EXPECT_EQ(files().createDirectory(u"C:\\a\\b"), error::kPathNotFound);
  EXPECT_EQ(files().createDirectory(u"D:\\"), error::kPathNotFound);
  EXPECT_EQ(files().createDirectory(u"\\\\farm\\other"), error::kBadNetPath);
  EXPECT_FALSE(folder_.exists("drives/d:"));
  EXPECT_FALSE(folder_.exists("drives/unc/farm/other"));
}

std::size_t entriesOf(const std::string& folder) {
  std::size_t count = 0;
  for (const auto& entry : fs::directory_iterator(folder)) count += entry.exists() ? 1 : 0;
  return count;
}

TEST_F(Files, CopyReplacesAndKeepsTheTimeOfTheLastWrite) {
  const std::string content(300000, 'p');
  const std::string source = folder_.write("source.exr", content);
  const auto written = fs::file_time_type(std::chrono::hours(24 * 365));
  fs::last_write_time(source, written);
  folder_.write("drives/c:/out/a.exr", "older and longer");
  EXPECT_EQ(files().copyFile(folder_.wide("source.exr"), u"C:\\out\\a.exr"), error::kSuccess);
  EXPECT_EQ(folder_.read("drives/c:/out/a.exr"), content);
  EXPECT_EQ(fs::last_write_time(folder_.path("drives/c:/out/a.exr")), written);
  EXPECT_EQ(entriesOf(folder_.path("drives/c:/out")), 1U);
}

TEST_F(Files, CopyThroughALinkKeepsTheLink) {
  folder_.write("source.exr", "new");
  folder_.write("elsewhere.exr", "old");
  fs::create_symlink(folder_.path("elsewhere.exr"), folder_.path("link.exr"));
  EXPECT_EQ(files().copyFile(folder_.wide("source.exr"), folder_.wide("link.exr")), error::kSuccess);
  EXPECT_TRUE(fs::is_symlink(folder_.path("link.exr")));
  EXPECT_EQ(folder_.read("elsewhere.exr"), "new");
}

TEST_F(Files, CopyFailuresLeaveNothingBehind) {
  folder_.write("source.exr", "pixels");
  const std::u16string source = folder_.wide("source.exr");
  const std::vector<std::tuple<std::u16string, std::u16string, std::uint32_t>> failures = {
      {folder_.wide("gone.exr"), u"C:\\out\\a.exr", error::kFileNotFound},
      {folder_.wide("no/gone.exr"), u"C:\\out\\a.exr", error::kPathNotFound},
      {u"C:\\out", u"C:\\b.exr", error::kAccessDenied},
      {source, u"C:\\out", error::kAccessDenied},
      {source, u"C:\\missing\\a.exr", error::kPathNotFound},
      {source, u"D:\\a.exr", error::kPathNotFound},
      {source, u"\\\\farm\\missing\\a.exr", error::kBadNetPath},
      {source, u"C:\\out\\a<b.exr", error::kInvalidName},
      {source, source, error::kSharingViolation},
  };
  for (const auto& [from, to, number] : failures) EXPECT_EQ(files().copyFile(from, to), number) << nativePath(to);
  EXPECT_EQ(folder_.read("source.exr"), "pixels");
  EXPECT_EQ(entriesOf(folder_.path("drives/c:")), 1U);
  EXPECT_EQ(entriesOf(folder_.path("drives/c:/out")), 0U);
}

TEST_F(Files, DeleteRemovesFilesOnly) {
  folder_.write("drives/c:/out/a.exr", "pixels");
  EXPECT_EQ(files().deleteFile(u"C:\\out\\a.exr"), error::kSuccess);
  EXPECT_FALSE(folder_.exists("drives/c:/out/a.exr"));
  EXPECT_EQ(files().deleteFile(u"C:\\out\\a.exr"), error::kFileNotFound);
  EXPECT_EQ(files().deleteFile(u"C:\\out"), error::kAccessDenied);
  EXPECT_EQ(files().deleteFile(u"C:\\missing\\a.exr"), error::kPathNotFound);
}

TEST_F(Files, TextFileIsTruncatedAndUnbuffered) {
  folder_.write("drives/c:/out/corvantis.log", "the previous run's lines");
  const std::unique_ptr<TextFile> log = openTextFile(u"C:\\out\\corvantis.log");
  ASSERT_NE(log, nullptr);
  EXPECT_EQ(folder_.read("drives/c:/out/corvantis.log"), "");
  EXPECT_TRUE(log->write("first\n"));
  EXPECT_EQ(folder_.read("drives/c:/out/corvantis.log"), "first\n");
  EXPECT_EQ(openTextFile(u"C:\\out"), nullptr);
  EXPECT_EQ(openTextFile(u"C:\\missing\\corvantis.log"), nullptr);
  EXPECT_EQ(openTextFile(u"D:\\corvantis.log"), nullptr);
}

TEST_F(Files, ErrorNumbersHaveTexts) {
  EXPECT_EQ(systemErrorText(error::kAccessDenied), u"Access is denied.");
  EXPECT_EQ(systemErrorText(4711), u"");
  EXPECT_EQ(windowsErrorNumber(ENOSPC), error::kDiskFull);
  EXPECT_EQ(windowsErrorNumber(-1), 31U);
}

TEST_F(Files, FakeFailsOnDemandAndElseDoesTheRealThing) {
  support::FakeFiles fake;
  const FilesReplacement replacement(fake);
  folder_.write("a.exr", "pixels");
  fake.fail("copyFile", "b.exr", error::kDiskFull, 1);
  EXPECT_EQ(files().copyFile(folder_.wide("a.exr"), folder_.wide("b.exr")), error::kDiskFull);
  EXPECT_FALSE(folder_.exists("b.exr"));
  EXPECT_EQ(files().copyFile(folder_.wide("a.exr"), folder_.wide("b.exr")), error::kSuccess);
  EXPECT_TRUE(folder_.exists("b.exr"));
  fake.log.on("deleteFile", support::answering(error::kAccessDenied));
  EXPECT_EQ(files().deleteFile(folder_.wide("b.exr")), error::kAccessDenied);
  EXPECT_EQ(fake.log.count("copyFile"), 2);
  EXPECT_EQ(fake.log.lines().back(), "deleteFile " + support::narrow(folder_.wide("b.exr")));
}

}  // namespace
}  // namespace platform
