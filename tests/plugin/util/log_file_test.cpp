#include "plugin/util/log_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/environment.h"
#include "platform/files.h"
#include "support/environment.h"
#include "support/temporary_folder.h"

namespace corvantis {
namespace {

using namespace std::string_literals;

class Log : public testing::Test {
 protected:
  void setVariables(const std::optional<std::string>& tmp, const std::optional<std::string>& path,
                    const std::optional<std::string>& userProfile) {
    environment.set("TMP", tmp);
    environment.set("PATH", path);
    environment.set("USERPROFILE", userProfile);
    environment.set("TEMP", folder.path("never"));
  }

  support::TemporaryFolder folder;
  support::Environment environment;
  LogFile log;
};

TEST_F(Log, LiesInTheFirstFolderThatTheEnvironmentNames) {
  const struct {
    std::optional<std::string> tmp, path, userProfile;
    std::string file;
  } rows[] = {
      {folder.path("a"), folder.path("b"), folder.path("c"), "a/corvantis.log"},
      {folder.path("a") + "\\", std::nullopt, std::nullopt, "a/corvantis.log"},
      {std::nullopt, folder.path("b"), folder.path("c"), "b/corvantis.log"},
      {std::nullopt, std::nullopt, folder.path("c"), "c/corvantis.log"},
      {"", folder.path("b"), folder.path("c"), "here/corvantis.log"},  // the current folder
  };
  const std::filesystem::path before = std::filesystem::current_path();
  for (const auto& row : rows) {
    for (const char* name : {"a", "b", "c", "here"}) {
      std::filesystem::remove_all(folder.path(name));
      std::filesystem::create_directory(folder.path(name));
    }
    setVariables(row.tmp, row.path, row.userProfile);
    LogFile opened;
    std::filesystem::current_path(folder.path("here"));
    openLogFile(opened);
    std::filesystem::current_path(before);
    EXPECT_TRUE(opened.isOpen());
    for (const char* name : {"a", "b", "c", "here"}) {
      const std::string file = name + "/corvantis.log"s;
      EXPECT_EQ(folder.exists(file), file == row.file) << file << " for " << row.file;
    }
  }
}

TEST_F(Log, IsSilentlyAbsentWithoutAFolder) {
  setVariables(std::nullopt, std::nullopt, std::nullopt);
  openLogFile(log);
  EXPECT_FALSE(log.isOpen());
  EXPECT_FALSE(log.failed());
  log << "lost" << LogFile::endl;

  setVariables(std::nullopt, folder.path() + ";C:\\Windows", folder.path());  // PATH is no folder
  openLogFile(log);
  EXPECT_FALSE(log.isOpen());
  EXPECT_TRUE(log.failed());
  log << "lost" << LogFile::endl;
}

TEST_F(Log, WritesPiecesAsTheyAre) {
  log.open(folder.wide("log"));
  const std::u16string wide = u"Gr\u00FC\u00DFe \u65E5";
  const char* const nothing = nullptr;
  log << "\nGot command: " << wide << LogFile::endl << LogFile::endl;
  log << "text"s << nothing << ' ' << u"wide" << ' ' << -5 << ' ' << std::uint64_t{18446744073709551615U}
      << LogFile::endl;
  log << 0.1F << ' ' << 1234567.0 << ' ' << 1e-7F << ' ' << 50.0 << ' ' << true << false << LogFile::endl;
  EXPECT_EQ(folder.readText("log"),
            "\nGot command: Gr\xFC\xDF"
            "e ?\n\ntext wide -5 18446744073709551615\n0.1 1.23457e+06 1e-07 50 10\n");
}

TEST_F(Log, StartsEmptyAndHasEveryStatementOnDiskWhenItEnds) {
  for (const std::string run : {"first run", "second"}) {
    LogFile oneRun;
    oneRun.open(folder.wide("log"));
    oneRun << run << LogFile::endl << [&] { return folder.readText("log") == run + "\n"; }() << "unfinished";
    EXPECT_EQ(folder.readText("log"), run + "\n1unfinished");
  }
}

TEST_F(Log, KeepsTheLinesOfSeveralThreadsWhole) {
  constexpr int kThreads = 4, kLines = 500;
  log.open(folder.wide("log"));
  std::vector<std::thread> writers;
  for (int writer = 0; writer < kThreads; ++writer) {
    writers.emplace_back([&, writer] {
      for (int line = 0; line < kLines; ++line)
        log << "writer " << writer << u" says " << line << " and no more" << LogFile::endl;
    });
  }
  for (std::thread& writer : writers) writer.join();
  std::multiset<std::string> expected, found;
  for (int writer = 0; writer < kThreads; ++writer) {
    for (int line = 0; line < kLines; ++line)
      expected.insert("writer " + std::to_string(writer) + " says " + std::to_string(line) + " and no more");
  }
  std::istringstream text(folder.readText("log"));
  for (std::string line; std::getline(text, line);) found.insert(line);
  EXPECT_EQ(found, expected);
}

TEST_F(Log, FailsWhenOpenedTwiceOrWhereThereIsNoFolder) {
  log.open(folder.wide("missing/log"));
  EXPECT_TRUE(!log.isOpen() && log.failed());
  log << "lost" << LogFile::endl;
  log.open(folder.wide("log"));
  log << "kept" << LogFile::endl;
  EXPECT_FALSE(log.failed());
  log.open(folder.wide("other"));
  EXPECT_TRUE(log.isOpen() && log.failed());
  log << "lost" << LogFile::endl;
  EXPECT_EQ(folder.readText("log"), "kept\n");
  EXPECT_FALSE(folder.exists("other"));
}

TEST_F(Log, StaysFailedAfterAFailedWrite) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
  log.open(u"\\dev\\full");
  ASSERT_TRUE(log.isOpen());
  for (int line = 0; line < 2; ++line) {
    log << "lost" << LogFile::endl;
    EXPECT_TRUE(log.failed());
  }
}

// Written to before main and before anything has opened it.
const bool wroteEarly = [] {
  log_file << "before main" << LogFile::endl;
  return !log_file.isOpen();
}();

// Made before the library's own static objects, hence destroyed after them.
bool writesAtExit = false;
struct LastWriter {
  ~LastWriter() {
    if (writesAtExit) log_file << "after main" << LogFile::endl;
  }
};
const LastWriter lastWriter;

TEST_F(Log, OfTheProcessMayBeWrittenToAtAnyTime) {
  EXPECT_TRUE(wroteEarly);
  // Where the child is a fresh start of this program, it has a folder of its own, and takes the log's place from us.
  const std::optional<std::u16string> parents = platform::environmentVariable(u"CORVANTIS_TEST_LOG");
  const std::u16string place = parents.value_or(folder.wide("log"));
  const support::Environment told("CORVANTIS_TEST_LOG", platform::nativePath(place));
  const auto writeAtExit = [&place] {
    log_file.open(place);
    writesAtExit = true;
    std::exit(0);
  };
  EXPECT_EXIT(writeAtExit(), testing::ExitedWithCode(0), "");
  EXPECT_EQ(folder.readText("log"), "after main\n");
}

}  // namespace
}  // namespace corvantis
