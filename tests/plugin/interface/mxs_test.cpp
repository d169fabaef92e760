#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "plugin/interface/mxs/evaluate.h"
#include "plugin/interface/mxs/run_script.h"
#include "support/fake_host.h"
#include "support/fake_script_runtime.h"
#include "support/temporary_folder.h"

namespace corvantis::mxs {
namespace {

using testing::ElementsAre;

const std::u16string kLocals = u"__corvantisMXSlocals__";

std::string errorOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "no error";
}

class ScriptHelpers : public testing::Test {
 protected:
  // Whatever happened, the runtime is left as it was found.
  ~ScriptHelpers() override {
    EXPECT_EQ(scripts.frameDepth(), 0U);
    EXPECT_EQ(scripts.linkedArrays(), 0U);
    EXPECT_EQ(scripts.disorder, 0);
  }

  // A script file of this content.
  std::u16string scriptFile(const std::string& name, const std::u16string& content) {
    folder.write(name, "");
    scripts.files[folder.wide(name)] = content;
    return folder.wide(name);
  }

  support::FakeScriptRuntime scripts;
  support::FakeHost host{&scripts};
  const support::TemporaryFolder folder;
};

TEST_F(ScriptHelpers, AFrameKeepsItsSlotsAliveAndRefusesMoreThanItHas) {
  hostsdk::Value* kept = nullptr;
  hostsdk::Value* lost = nullptr;
  {
    AllocationFrame callers(scripts);
    frame<2> values;
    EXPECT_EQ(scripts.frameDepth(), 2U);
    EXPECT_EQ(scripts.threadInitialisations, 1);
    hostsdk::Value*& slot = values.link();
    EXPECT_EQ(slot, nullptr);
    {
      AllocationFrame inner(scripts);
      slot = kept = scripts.newString(u"kept");
      lost = scripts.newString(u"lost");
    }
    EXPECT_NO_THROW(scripts.requireAlive(kept));
    EXPECT_THROW(scripts.requireAlive(lost), std::logic_error);
    values.link();
    EXPECT_EQ(errorOf([&] { values.link(); }), "mxs.frame.link: Index out of bounds [2]");
  }
  EXPECT_THROW(scripts.requireAlive(kept), std::logic_error);
}

TEST_F(ScriptHelpers, FileInGivesTheLastValueAndClosesTheFile) {
  scripts.evaluation = [&](const std::u16string&) {
    EXPECT_EQ(scripts.fileStreams.at(0)->closed, 0);
    return scripts.newString(u"42");
  };
  hostsdk::Value* value = file_in(scriptFile("pre.ms", u"40 + 2"));
  EXPECT_EQ(value->text(), u"42");
  EXPECT_EQ(scripts.threadLocals.result, value);
  EXPECT_THAT(scripts.sources, ElementsAre(u"40 + 2"));
  EXPECT_EQ(scripts.parserErrors, scripts.threadLocals.currentStdout);
  const support::FakeFileStream& stream = *scripts.fileStreams.at(0);
  EXPECT_EQ(stream.openedMode, u"r");
  EXPECT_EQ(stream.openedCodePage, -1);
  EXPECT_EQ(stream.closed, 1);

  EXPECT_EQ(file_in(scriptFile("empty.ms", u"")), scripts.undefined());
}

TEST_F(ScriptHelpers, FileInTellsWhatWentWrong) {
  folder.write("pre.ms", "x");
  const std::u16string script = folder.wide("pre.ms");
  EXPECT_EQ(errorOf([&] { file_in(u"\\no such\\script.ms"); }),
            "mxs::file_in() - Tried to execute a maxscript file which doesn't exist: \"\\no such\\script.ms\"");
  EXPECT_TRUE(scripts.fileStreams.empty());
  EXPECT_EQ(errorOf([&] { file_in(script); }), "-- Runtime error: cannot open " + support::narrow(script));

  scripts.files[script] = u"x";
  scripts.compilation = [] { throw hostsdk::RuntimeError(u"syntax"); };
  EXPECT_EQ(errorOf([&] { file_in(script); }), "-- Runtime error: syntax");
  scripts.compilation = nullptr;
  scripts.evaluation = [](auto&) -> hostsdk::Value* { throw hostsdk::RuntimeError(u"run"); };
  EXPECT_EQ(errorOf([&] { file_in(script); }), "-- Runtime error: run");
  scripts.evaluation = [](auto&) -> hostsdk::Value* { throw hostsdk::MAXException(u"host"); };
  EXPECT_THROW(file_in(script), hostsdk::MAXException);
  ASSERT_EQ(scripts.fileStreams.size(), 4U);
  for (std::size_t i = 1; i < scripts.fileStreams.size(); ++i) EXPECT_EQ(scripts.fileStreams[i]->closed, 1);
}

TEST_F(ScriptHelpers, StringScriptsLeaveTheLocalsGlobalAsItWas) {
  using Evaluation = support::FakeScriptRuntime::Evaluation;
  const Evaluation fails = [](auto&) -> hostsdk::Value* { throw hostsdk::RuntimeError(u"x"); };
  const Evaluation removes = [this](auto&) { return scripts.globalValues.values.erase(kLocals), scripts.ok(); };
  const Evaluation succeeds = [this](const std::u16string& source) {
    EXPECT_EQ(source, u"(a = 1\na + 1)");
    EXPECT_EQ(dynamic_cast<hostsdk::Array&>(*scripts.globalValues.values.at(kLocals)).size(), 0U);
    return scripts.ok();
  };
  for (const Evaluation& evaluation : {fails, removes, succeeds}) {
    scripts.evaluation = evaluation;
    for (hostsdk::Value* before : {static_cast<hostsdk::Value*>(nullptr), scripts.ok()}) {
      scripts.globalValues.values.clear();
      if (before != nullptr) scripts.globalValues.values[kLocals] = before;
      executeScriptString script(u"a = 1\na + 1");
      errorOf([&] { script.run(); });
      const auto after = scripts.globalValues.values.find(kLocals);
      EXPECT_EQ(after == scripts.globalValues.values.end() ? nullptr : after->second, before);
    }
  }
}

TEST_F(ScriptHelpers, StringScriptsRestoreTheThreadWhenTheyAreGone) {
  hostsdk::CharStream* const before = scripts.threadLocals.currentStdout;
  scripts.threadLocals.evaluationLevel = 3;
  scripts.threadLocals.sourcePosition = 40;
  support::FakeStringStream elsewhere(scripts);
  scripts.evaluation = [&](const std::u16string&) {
    scripts.threadLocals.currentStdout = &elsewhere;
    scripts.threadLocals.evaluationLevel = 9;
    scripts.threadLocals.sourcePosition = 99;
    return scripts.ok();
  };
  {
    executeScriptString script(u"x");
    script.run();
    EXPECT_EQ(scripts.threadLocals.currentStdout, &elsewhere);
  }
  EXPECT_EQ(scripts.threadLocals.currentStdout, before);
  EXPECT_EQ(scripts.threadLocals.evaluationLevel, 3);
  EXPECT_EQ(scripts.threadLocals.sourcePosition, 40);

  file_in(scriptFile("pre.ms", u"x"));
  EXPECT_EQ(scripts.threadLocals.currentStdout, &elsewhere) << "files restore nothing of the kind";
}

TEST_F(ScriptHelpers, ListenerOutputGoesWhereScriptsPrint) {
  printToListener(u"one ");
  scripts.threadLocals.currentStdout = nullptr;
  printToListener(u"two");
  EXPECT_EQ(scripts.printed(), u"one two");
  support::FakeStringStream elsewhere(scripts);
  scripts.threadLocals.currentStdout = &elsewhere;
  printToListener(u"three");
  EXPECT_EQ(elsewhere.content, u"three");
}

TEST(ScriptHelpersWithoutHost, PrintNothingAndRefuseToEvaluate) {
  EXPECT_NO_THROW(printToListener(u"lost"));
  EXPECT_THROW(executeScriptString(u"x"), hostsdk::MAXException);
}

}  // namespace
}  // namespace corvantis::mxs
