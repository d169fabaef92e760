#include "plugin/job/default_actions.h"

#include "support/job_fixture.h"

namespace corvantis {
namespace {

using testing::ElementsAre;

class DefaultActions : public support::JobFixture {
 protected:
  DefaultActions() { bindCore(); }
};

TEST_F(DefaultActions, FailOnEveryKindThatIsNotIgnored) {
  struct Kind {
    bool JobSettings::*ignored;
    int type, failAction;
    const char* what;
    const char* label;
  };
  const Kind kinds[] = {
      {&JobSettings::ignoreMissingExternalFiles, 1, 5, "external file", "  TYPE_MISSING_EXTERNAL_FILES = "},
      {&JobSettings::ignoreMissingUVWs, 4, 5, "UVW cooridinate", "  TYPE_MISSING_UVWS = "},
      {&JobSettings::ignoreMissingDLLs, 2, 5, "DLL", "  TYPE_MISSING_DLL_FILES = "},
      {&JobSettings::ignoreMissingXREFs, 3, 7, "XREF", "  TYPE_MISSING_XREF_FILES = "},
  };
  const Kind none{};
  for (const Kind* ignored : {&none, &kinds[0], &kinds[1], &kinds[2], &kinds[3]}) {
    job.settings = JobSettings();
    if (ignored != &none) job.settings.*ignored->ignored = true;
    host.calls.clear();
    log.startAgain();
    applyDefaultActions(job);
    std::vector<std::string> calls, lines, told = {"Checking default actions"};
    for (const Kind& kind : kinds) {
      const bool ignores = &kind == ignored;
      calls.insert(calls.end(), {"DefaultActionSystem", "SetDefaultAction " + std::to_string(kind.type) + " " +
                                                            std::to_string(ignores ? 1 : kind.failAction) + " 0 none"});
      lines.push_back(std::string(ignores ? "Ignoring" : "Not ignoring") + " missing " + kind.what + " errors");
      told.push_back(std::string(kind.label) + (ignores ? "IGNORE" : "FAIL"));
    }
    EXPECT_EQ(host.calls.lines(), calls);
    EXPECT_EQ(log.lines(), lines);
    reportDefaultActions(job, connection);
    EXPECT_EQ(log.unsentLines(), told);
  }
}

TEST_F(DefaultActions, ReportWhatTheHostHasInForce) {
  host.core.defaultActions.actions = {{1, 1}, {4, 5}, {2, 7}, {3, 0}};
  reportDefaultActions(job, connection);
  EXPECT_THAT(log.unsentLines(), ElementsAre("Checking default actions", "  TYPE_MISSING_EXTERNAL_FILES = IGNORE",
                                             "  TYPE_MISSING_UVWS = FAIL", "  TYPE_MISSING_DLL_FILES = FAIL",
                                             "  TYPE_MISSING_XREF_FILES = FAIL"));
}

}  // namespace
}  // namespace corvantis
