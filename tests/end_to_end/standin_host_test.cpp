#include <gtest/gtest.h>

#include "programs.h"
#include "support/temporary_folder.h"

namespace end_to_end {
namespace {

TEST(StandinHost, ExitCodesAndStreamsAreWhatScriptsCanTrust) {
  const support::TemporaryFolder folder;
  const std::string script = folder.write("a.ms", "print 7\ntrue\n");
  const std::string failing = folder.write("b.ms", "x = 1\nthrow \"no good\"\n");
  const std::string wrong = folder.write("c.ms", "x = 1\ny = (2 +\n");
  const struct {
    std::vector<std::string> arguments;
    int exitCode;
    const char* output;  // somewhere in standard output
    const char* errors;  // somewhere in standard error
  } cases[] = {
      {{script}, 0, "7\n", ""},
      {{failing}, 1, "", "no good"},
      {{wrong}, 1, "", "c.ms"},
      {{"--execute", "1 + 1"}, 0, "", ""},
      {{"--execute", "undefined"}, 0, "", ""},
      {{"--execute", "1 == 2"}, 1, "", ""},
      {{"--execute", "format \"% and %\\n\" 1 \"two\""}, 0, "1 and two\n", ""},
      {{"--execute", "TessarynUtil.CurrentTask == -1"}, 0, "", ""},
      {{"--execute", "TessarynUtil.LogMessage \"to the listener\""}, 0, "to the listener\n", ""},
      {{"--execute", "TessarynUtil.FailRender \"enough\""}, 1, "", "enough"},
      {{}, 2, "", "required"},
      {{"--nonsense"}, 2, "", "nonsense"},
      {{folder.path("missing.ms")}, 2, "", "missing.ms"},
      {{"--plugin", "/etc/passwd", script}, 2, "", "/etc/passwd"},
      {{script, "--execute", "1"}, 2, "", "excludes"},
      {{"--help"}, 0, "--check", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    const Finished host = run("standin-host", c.arguments, folder.path());
    EXPECT_EQ(host.exitCode, c.exitCode) << host.output << host.errors;
    EXPECT_NE(host.output.find(c.output), std::string::npos) << host.output;
    EXPECT_NE(host.errors.find(c.errors), std::string::npos) << host.errors;
  }
}

TEST(StandinHost, ChecksScriptsWithoutRunningThem) {
  const support::TemporaryFolder folder;
  const std::string good = folder.write("good.ms", "deleteFile \"" + folder.path("good.ms") + "\"\n");
  const std::string bad = folder.write("bad.ms", "x = 1\ny = (2 + )\n");
  const Finished fine = run("standin-host", {"--check", good});
  EXPECT_EQ(fine.exitCode, 0);
  EXPECT_EQ(fine.output, "");
  EXPECT_TRUE(folder.exists("good.ms"));
  const Finished both = run("standin-host", {"--check", good, bad});
  EXPECT_EQ(both.exitCode, 1);
  EXPECT_EQ(both.output.rfind(bad + ":2:", 0), 0U) << both.output;
}

}  // namespace
}  // namespace end_to_end
