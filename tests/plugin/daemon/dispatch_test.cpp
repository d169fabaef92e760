// How lines become commands, for every command alike.
#include "plugin/daemon/dispatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "support/daemon_fixture.h"

namespace corvantis {
namespace {

TEST(CommandLine, SplitsIntoFields) {
  const std::pair<std::u16string, std::vector<std::u16string>> cases[] = {
      {u"", {}},
      {u"EndJob", {u"EndJob"}},
      {u"a,,b", {u"a", u"", u"b"}},
      {u"a,", {u"a", u""}},
      {u",", {u"", u""}},
      {u" a , b ", {u" a ", u" b "}},
      {u"\"a\",b", {u"a", u"b"}},
      {u"\"\"", {u""}},
      {u"a\"b,c\"d,e", {u"ab,cd", u"e"}},
      {u"\"never closed,x", {u"never closed,x"}},
      {u"C:\\\\a\\\\b.max,D:/c", {u"C:\\a\\b.max", u"D:/c"}},
      {u"\\\"x\\\",1\\,2", {u"\"x\"", u"1,2"}},
      {u"\"one\\ntwo\\\\\"", {u"one\ntwo\\"}},
      {u"\u00e9\u4e2d\U0001F600,x", {u"\u00e9\u4e2d\U0001F600", u"x"}},
      {std::u16string(u"a\0b,c", 5), {std::u16string(u"a\0b", 3), u"c"}},
  };
  for (const auto& [line, fields] : cases) EXPECT_EQ(splitCommandLine(line), fields) << testing::PrintToString(line);
  const auto expectRefused = [](const std::u16string& line, const char* text) {
    EXPECT_THAT([&] { splitCommandLine(line); }, testing::ThrowsMessage<std::runtime_error>(text));
  };
  for (const auto* line : {u"StartJob,C:\\scenes\\a.max", u"\\t", u"\\N"})
    expectRefused(line, "unknown escape sequence");
  for (const auto* line : {u"\\", u"a,\"b\\"}) expectRefused(line, "cannot end with escape");
}

class Dispatch : public DaemonTest {};

TEST_F(Dispatch, UnknownWordsAreRepliedOnce) {
  std::vector<std::pair<std::string, std::string>> lines = {{"", ""},
                                                            {"\"\"", ""},
                                                            {",a", ""},
                                                            {"startjob", "startjob"},
                                                            {"EndJob ", "EndJob "},
                                                            {"\"a,b\",c", "a,b"},
                                                            {"\u4e2d", "\u4e2d"},
                                                            {"RenderTaskX", "RenderTaskX"}};
  for (auto& [line, word] : lines) word = "ERROR: Unexpected command \"" + word + "\" received.";
  runLines(lines);
}

TEST_F(Dispatch, WrongCountsOfParametersAreRepliedAndNothingRuns) {
  runLines({
      {"CurrentTask", "ERROR: CurrentTask: Expected 1 parameter, got 0"},
      {"CurrentTask,1,2", "ERROR: CurrentTask: Expected 1 parameter, got 2"},
      {"StartJob", "ERROR: StartJob: Expected 2 parameters, got 0"},
      {"StartJob,a.max", "ERROR: StartJob: Expected 2 parameters, got 1"},
      {"StartJob,a,b,c", "ERROR: StartJob: Expected 2 parameters, got 3"},
      {"RenderTask", "ERROR: RenderTask: Expected 1 parameter, got 0"},
      {"RenderTask,1,2", "ERROR: RenderTask: Expected 1 parameter, got 2"},
      {"SlaveFolders", "ERROR: SlaveFolders: Expected 2 parameters, got 0"},
      {"SlaveFolders,a,b,c", "ERROR: SlaveFolders: Expected 2 parameters, got 3"},
      {"TempFolder", "ERROR: TempFolder: Expected 1 parameter, got 0"},
      {"TempFolder,a,b", "ERROR: TempFolder: Expected 1 parameter, got 2"},
      {"FrameNumberBase", "ERROR: FrameNumberBase: Expected 1 parameter, got 0"},
      {"ExecuteMaxScriptFile,a.ms,true,1", "ERROR: ExecuteMaxScriptFile: Expected 4 parameters, got 3"},
      {"ExecuteStringScript,1", "ERROR: ExecuteStringScript: Expected 2 parameters, got 1"},
  });
  EXPECT_EQ(job->currentTask, 0);
  EXPECT_TRUE(job->sceneFileName.empty());
  EXPECT_TRUE(job->settings.jobsDataFolder.empty() && job->settings.tempFolder.empty());
  EXPECT_TRUE(scripts.sources.empty());
}

TEST_F(Dispatch, ContinueIsOnlyLogged) {
  runLine("CONTINUE,1,2", {});
  EXPECT_THAT(logOfCommand(), testing::ElementsAre("Warning: ignoring CONTINUE statement"));
}

}  // namespace
}  // namespace corvantis
