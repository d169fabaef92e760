// The file layer's contract, the same on every system: each case is one call and the Windows number that it answers.
#include "platform/files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "support/environment.h"
#include "support/platform_kind.h"
#include "support/temporary_folder.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using support::kIsWindows;

// A folder "out" to work in, under a path that has a drive.
class Files : public testing::Test {
 protected:
  Files() { fs::create_directories(native("out")); }

  // Below the drive.
  std::string native(const std::string& name) const { return folder_.path("drives/" + drive_ + "/" + name); }
  std::u16string path(const std::u16string& name) const { return root_ + u"\\" + name; }
  void write(const std::string& name, const std::string& content) const {
    folder_.write("drives/" + drive_ + "/" + name, content);
  }
  std::string read(const std::string& name) const { return folder_.read("drives/" + drive_ + "/" + name); }

  std::uint32_t errorOf(const std::u16string& name) const { return files().attributes(path(name)).errorNumber; }

  const support::TemporaryFolder folder_;
  // Elsewhere a drive is a folder of that name; on Windows the real drive is part of the path.
  const std::string drive_ = kIsWindows ? "c" : "c:";
  const std::u16string root_ = kIsWindows ? folder_.wide("drives/c") : u"C:";
  const support::Environment drives_{"CORVANTIS_DRIVES", folder_.path("drives")};
};

struct Case {
  std::u16string name;
  std::uint32_t number;
};

TEST_F(Files, AttributesTellFilesFoldersAndWhyNot) {
  write("out/a.exr", "pixels");
  EXPECT_EQ(errorOf(u"out\\a.exr"), error::kSuccess);
  EXPECT_EQ(errorOf(u"out/a.exr"), error::kSuccess);
  EXPECT_FALSE(files().attributes(path(u"out\\a.exr")).isDirectory);
  EXPECT_TRUE(files().attributes(path(u"out")).isDirectory);
  EXPECT_TRUE(files().attributes(path(u"out\\")).isDirectory);
  EXPECT_TRUE(files().attributes(path(u"")).isDirectory);
  const std::vector<Case> failures = {
      {u"out\\missing.exr", error::kFileNotFound},  {u"missing\\a.exr", error::kPathNotFound},
      {u"out\\a.exr\\below", error::kPathNotFound}, {u"out\\a?.exr", error::kInvalidName},
      {u"out\\tab\t.exr", error::kInvalidName},     {std::u16string(u"out\\a\0b", 7), error::kInvalidName},
  };
  for (const Case& failure : failures) EXPECT_EQ(errorOf(failure.name), failure.number) << nativePath(failure.name);
  EXPECT_EQ(files().attributes(u"").errorNumber, error::kPathNotFound);
}

TEST_F(Files, MissingDrivesAndSharesHaveNumbersOfTheirOwn) {
  // Wine answers 2 for a missing drive and 66 for every share; Windows itself 3, and 53 or 67.
  const std::uint32_t noDrive = files().attributes(u"Q:\\a.exr").errorNumber;
  EXPECT_TRUE(noDrive == error::kPathNotFound || (kIsWindows && noDrive == error::kFileNotFound)) << noDrive;
  const std::uint32_t noShare = files().attributes(u"\\\\corvantis-nowhere\\jobs\\a.exr").errorNumber;
  EXPECT_TRUE(noShare == error::kBadNetPath || (kIsWindows && (noShare == error::kBadNetName || noShare == 66)))
      << noShare;
}

TEST_F(Files, CreateDirectoryMakesOneFolder) {
  EXPECT_EQ(files().createDirectory(path(u"new")), error::kSuccess);
  EXPECT_TRUE(fs::is_directory(native("new")));
  write("file", "");
  const std::vector<Case> failures = {
      {u"new", error::kAlreadyExists},
      {u"file", error::kAlreadyExists},
      {u"a\\b", error::kPathNotFound},
      {u"a<b", error::kInvalidName},
      {std::u16string(u"a\0b", 3), error::kInvalidName},
  };
  for (const Case& failure : failures) {
    EXPECT_EQ(files().createDirectory(path(failure.name)), failure.number) << nativePath(failure.name);
  }
}

std::size_t entriesOf(const std::string& folder) {
  std::size_t count = 0;
  for (const auto& entry : fs::directory_iterator(folder)) count += entry.exists() ? 1 : 0;
  return count;
}

TEST_F(Files, CopyReplacesAndKeepsTheTimeOfTheLastWrite) {
  const std::string content(300000, 'p');
  write("source.exr", content);
  const fs::file_time_type written = fs::last_write_time(native("source.exr")) - std::chrono::hours(24 * 365);
  fs::last_write_time(native("source.exr"), written);
  write("out/a.exr", "older and longer");
  EXPECT_EQ(files().copyFile(path(u"source.exr"), path(u"out\\a.exr")), error::kSuccess);
  EXPECT_EQ(read("out/a.exr"), content);
  EXPECT_EQ(fs::last_write_time(native("out/a.exr")), fs::last_write_time(native("source.exr")));
  EXPECT_EQ(entriesOf(native("out")), 1U);
}

TEST_F(Files, CopyFailuresLeaveNothingBehind) {
  write("source.exr", "pixels");
  const struct {
    std::u16string from, to;
    std::uint32_t number;
  } failures[] = {
      {u"gone.exr", u"out\\a.exr", error::kFileNotFound},
      {u"no\\gone.exr", u"out\\a.exr", error::kPathNotFound},
      {u"out", u"b.exr", error::kAccessDenied},
      {u"source.exr", u"out", error::kAccessDenied},
      {u"source.exr", u"missing\\a.exr", error::kPathNotFound},
      {u"source.exr", u"out\\a<b.exr", error::kInvalidName},
      {u"source.exr", std::u16string(u"out\\a\0b", 7), error::kInvalidName},
      {u"source.exr", u"source.exr", error::kSharingViolation},
  };
  for (const auto& row : failures) {
    EXPECT_EQ(files().copyFile(path(row.from), path(row.to)), row.number) << nativePath(row.to);
  }
  EXPECT_EQ(read("source.exr"), "pixels");
  EXPECT_EQ(entriesOf(native("")), 2U);
  EXPECT_EQ(entriesOf(native("out")), 0U);
}

TEST_F(Files, DeleteRemovesFilesOnly) {
  write("out/a.exr", "pixels");
  EXPECT_EQ(files().deleteFile(path(u"out\\a.exr")), error::kSuccess);
  EXPECT_EQ(entriesOf(native("out")), 0U);
  EXPECT_EQ(files().deleteFile(path(u"out\\a.exr")), error::kFileNotFound);
  EXPECT_EQ(files().deleteFile(path(u"out")), error::kAccessDenied);
  EXPECT_EQ(files().deleteFile(path(u"missing\\a.exr")), error::kPathNotFound);
}

TEST_F(Files, AreKnownUnderEveryName) {
  write("out/a.exr", "pixels");
  write("out/b.exr", "pixels");
  const auto isA = [&](const std::u16string& name) { return files().isSameFile(path(name), path(u"out\\a.exr")); };
  EXPECT_TRUE(isA(u"out\\a.exr"));
  EXPECT_TRUE(isA(u"out\\.\\..\\out/a.exr"));
  EXPECT_EQ(isA(u"OUT\\A.exr"), kIsWindows);
  EXPECT_FALSE(isA(u"out\\b.exr"));
  EXPECT_FALSE(isA(u"out\\c.exr"));
  EXPECT_FALSE(files().isSameFile(path(u"out\\a.exr"), path(u"out\\c.exr")));
}

TEST_F(Files, TextFileIsTruncatedAndUnbuffered) {
  write("out/corvantis.log", "the previous run's lines");
  const std::unique_ptr<TextFile> log = openTextFile(path(u"out\\corvantis.log"));
  ASSERT_NE(log, nullptr);
  EXPECT_EQ(read("out/corvantis.log"), "");
  EXPECT_TRUE(log->write("first\n"));
  EXPECT_EQ(read("out/corvantis.log"), kIsWindows ? "first\r\n" : "first\n");
  EXPECT_EQ(openTextFile(path(u"out")), nullptr);
  EXPECT_EQ(openTextFile(path(u"missing\\corvantis.log")), nullptr);
}

TEST_F(Files, ErrorNumbersHaveTexts) {
  // Wine's texts are shorter than those of Windows.
  EXPECT_TRUE(systemErrorText(error::kAccessDenied).starts_with(u"Access"));
  EXPECT_EQ(systemErrorText(error::kAccessDenied).back(), u'.');
  EXPECT_EQ(systemErrorText(0xDEADBEEF), u"");
}

TEST_F(Files, NativePathsComeBack) {
  EXPECT_EQ(windowsPath(nativePath(u"out\\\u00e4\U0001F3A8.png")), u"out\\\u00e4\U0001F3A8.png");
  EXPECT_EQ(windowsPath("out/a.exr"), u"out\\a.exr");
}

}  // namespace
}  // namespace platform
