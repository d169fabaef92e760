#include "plugin/job/default_actions.h"

#include "support/job_fixture.h"

namespace corvantis {
namespace {

using testing::ElementsAre;

class DefaultActions : public support::JobFixture {
 protected:
  DefaultActions() { bindCore(); }
  std::vector<std::string> report() {
    reportDefaultActions(job, connection);
    return log.unsentLines();
  }
};

TEST_F(DefaultActions, FailOnEveryKindWithoutIgnoreCommands) {
  applyDefaultActions(job);
  EXPECT_THAT(host.calls.lines(), ElementsAre("DefaultActionSystem", "SetDefaultAction 1 5 0 none",  //
                                              "DefaultActionSystem", "SetDefaultAction 4 5 0 none",  //
                                              "DefaultActionSystem", "SetDefaultAction 2 5 0 none",  //
                                              "DefaultActionSystem", "SetDefaultAction 3 7 0 none"));
  EXPECT_THAT(log.lines(),
              ElementsAre("Not ignoring missing external file errors", "Not ignoring missing UVW cooridinate errors",
                          "Not ignoring missing DLL errors", "Not ignoring missing XREF errors"));
}

TEST_F(DefaultActions, IgnoreTheKindThatIsFlagged) {
  struct Case {
    bool JobSettings::*flag;
    const char* call;
    const char* line;
    const char* reported;
  };
  const Case cases[] = {
      {&JobSettings::ignoreMissingExternalFiles, "SetDefaultAction 1 1 0 none", "Ignoring missing external file errors",
       "  TYPE_MISSING_EXTERNAL_FILES = IGNORE"},
      {&JobSettings::ignoreMissingUVWs, "SetDefaultAction 4 1 0 none", "Ignoring missing UVW cooridinate errors",
       "  TYPE_MISSING_UVWS = IGNORE"},
      {&JobSettings::ignoreMissingDLLs, "SetDefaultAction 2 1 0 none", "Ignoring missing DLL errors",
       "  TYPE_MISSING_DLL_FILES = IGNORE"},
      {&JobSettings::ignoreMissingXREFs, "SetDefaultAction 3 1 0 none", "Ignoring missing XREF errors",
       "  TYPE_MISSING_XREF_FILES = IGNORE"},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    job.settings = JobSettings();
    job.settings.*cases[i].flag = true;
    host.calls.clear();
    log.startAgain();
    applyDefaultActions(job);
    EXPECT_EQ(host.calls.linesOf({"SetDefaultAction"})[i], cases[i].call);
    EXPECT_EQ(log.lines()[i], cases[i].line);
    EXPECT_EQ(report()[i + 1], cases[i].reported);
  }
}

TEST_F(DefaultActions, ReportWhatTheHostHasInForce) {
  host.core.defaultActions.actions = {{1, 1}, {4, 5}, {2, 7}, {3, 0}};
  EXPECT_THAT(report(), ElementsAre("Checking default actions", "  TYPE_MISSING_EXTERNAL_FILES = IGNORE",
                                    "  TYPE_MISSING_UVWS = FAIL", "  TYPE_MISSING_DLL_FILES = FAIL",
                                    "  TYPE_MISSING_XREF_FILES = FAIL"));
  EXPECT_THAT(host.calls.lines(), ElementsAre("DefaultActionSystem", "GetDefaultAction 1 0",  //
                                              "DefaultActionSystem", "GetDefaultAction 4 1",  //
                                              "DefaultActionSystem", "GetDefaultAction 2 5",  //
                                              "DefaultActionSystem", "GetDefaultAction 3 7"));
}

}  // namespace
}  // namespace corvantis
