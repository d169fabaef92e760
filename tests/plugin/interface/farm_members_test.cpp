// The members of TessarynUtil that talk to the worker, with and without one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "interface_fixture.h"
#include "platform/environment.h"

namespace corvantis {
namespace {

using hostsdk::FPValue;

class FarmMembers : public InterfaceTest {
 protected:
  // The text of the script error that a call raises.
  std::string scriptErrorOf(const std::function<void()>& work) {
    try {
      work();
    } catch (const hostsdk::RuntimeError& error) {
      return support::narrow(error.message());
    }
    return "no script error";
  }
};

TEST_F(FarmMembers, NoticesReachTheWorker) {
  const auto script = [this] {
    call(u"LogMessage", {text(u"one \u4e2d")});
    call(u"WarnMessage", {text(u"two")});
    call(u"SetTitle", {text(u"three")});
    return shown(call(u"SetProgress", {FPValue::ofFloat(33.333333F)}));
  };
  const auto worker_ = [this] {
    worker->expect("FUNCTION: STDOUT: one \u4e2d").expect("FUNCTION: WARN: two");
    worker->expect("FUNCTION: SETTITLE three").expect("FUNCTION: PROGRESS 33.3333");
  };
  const std::uint64_t before = platform::pumpCount();
  EXPECT_TRUE(runScript(script, worker_, "SUCCESS: true"));
  EXPECT_EQ(platform::pumpCount() - before, 6U) << "once a call, and once more for title and progress";
  EXPECT_EQ(scripts.printed(), u"");
}

TEST_F(FarmMembers, NoticesWithoutADaemonRunGoToTheListener) {
  call(u"LogMessage", {text(u"one")});
  call(u"WarnMessage", {text(u"two")});
  call(u"SetTitle", {text(u"three")});
  EXPECT_EQ(shown(call(u"SetProgress", {FPValue::ofFloat(5)})), "true");
  EXPECT_EQ(support::narrow(scripts.printed()), "one\ntwo\nTitle was set to \"three\"\n");
}

struct Question {
  std::u16string member;
  std::vector<FPValue> arguments;
  std::string request, answer, result;
};

TEST_F(FarmMembers, QuestionsAreAskedAndAnswered) {
  const FPValue key = text(u"k \u00e9\u4e2d"), two = FPValue::ofInt(2);
  const std::string ansiKey = "k \u00e9?";
  const Question questions[] = {
      {u"GetJobInfoEntry", {key}, "GETJOBINFOENTRY " + ansiKey, "SUCCESS: value", "\"value\""},
      {u"GetJobInfoEntry", {key}, "GETJOBINFOENTRY " + ansiKey, "SUCCESS: ", "\"\""},
      {u"GetJobInfoEntry", {key}, "GETJOBINFOENTRY " + ansiKey, "SUCCESS:value", "undefined"},
      {u"GetJobInfoEntry", {key}, "GETJOBINFOENTRY " + ansiKey, "success: value", "undefined"},
      {u"GetJobInfoEntry", {key}, "GETJOBINFOENTRY " + ansiKey, "", "undefined"},
      {u"GetSubmitInfoEntry", {key}, "GETSUBMITINFOENTRY " + ansiKey, "SUCCESS: value", "\"value\""},
      {u"GetSubmitInfoEntry", {key}, "GETSUBMITINFOENTRY " + ansiKey, "ERROR: no", "undefined"},
      {u"GetSubmitInfoEntryElementCount", {key}, "GETSUBMITINFOENTRYELEMENTCOUNT " + ansiKey, "SUCCESS: 12", "12"},
      {u"GetSubmitInfoEntryElementCount", {key}, "GETSUBMITINFOENTRYELEMENTCOUNT " + ansiKey, "ERROR", "0"},
      {u"GetSubmitInfoEntryElement",
       {two, key},
       "GETSUBMITINFOENTRYELEMENT 2 " + ansiKey,
       "SUCCESS: value",
       "\"value\""},
      {u"GetSubmitInfoEntryElement", {two, key}, "GETSUBMITINFOENTRYELEMENT 2 " + ansiKey, "ERROR", "undefined"},
      {u"GetAuxFilename", {FPValue::ofInt(-3)}, "GETAUXFILE -3", "SUCCESS: C:\\a.mat", "\"C:\\a.mat\""},
      {u"GetAuxFilename", {two}, "GETAUXFILE 2", "ERROR", "undefined"},
      {u"GetPathMappedFilename", {key}, "GETPATHMAPPEDFILENAME k \u00e9\u4e2d", "SUCCESS: /mnt/k", "\"/mnt/k\""},
      {u"GetPathMappedFilename", {key}, "GETPATHMAPPEDFILENAME k \u00e9\u4e2d", "ERROR", "undefined"},
  };
  for (const Question& q : questions) {
    SCOPED_TRACE(q.request + " -> " + q.answer);
    startAfresh();
    EXPECT_TRUE(runScript([&] { return shown(call(q.member, q.arguments)); },
                          [&] { worker->expect("FUNCTION: " + q.request).answer(q.answer); }, "SUCCESS: " + q.result));
  }
}

TEST_F(FarmMembers, QuestionsWithoutADaemonRunHaveNoAnswer) {
  const FPValue key = text(u"k"), one = FPValue::ofInt(1);
  EXPECT_EQ(shown(call(u"GetJobInfoEntry", {key})), "undefined");
  EXPECT_EQ(shown(call(u"GetSubmitInfoEntry", {key})), "undefined");
  EXPECT_EQ(shown(call(u"GetSubmitInfoEntryElementCount", {key})), "0");
  EXPECT_EQ(shown(call(u"GetSubmitInfoEntryElement", {one, key})), "undefined");
  EXPECT_EQ(shown(call(u"GetAuxFilename", {one})), "undefined");
  EXPECT_EQ(scriptErrorOf([&] { call(u"GetPathMappedFilename", {key}); }),
            "Error in GetPathMappedFilename: simple_socket: send called while not connected.");
}

TEST_F(FarmMembers, SilenceIsAScriptErrorThatTheScriptMayHandle) {
  const auto script = [this] { return scriptErrorOf([&] { call(u"GetAuxFilename", {FPValue::ofInt(0)}); }); };
  EXPECT_TRUE(runScript(
      script, [&] { worker->expect("FUNCTION: GETAUXFILE 0").letTimePass(clock, 120000); },
      "SUCCESS: Error in GetAuxFilename: simple_socket: Timed out waiting for header packet to arrive."));
}

TEST_F(FarmMembers, AnswersThatMakeNoSenseBecomeHostErrors) {
  const struct {
    std::u16string member;
    std::string request, answer, report;
  } cases[] = {
      {u"GetJobInfoEntry", "GETJOBINFOENTRY k", "SUCCESS: \xff", "Invalid UTF-8"},
      {u"GetSubmitInfoEntryElementCount", "GETSUBMITINFOENTRYELEMENTCOUNT k", "SUCCESS: many",
       "bad lexical cast: source type value could not be interpreted as target"},
  };
  for (const auto& c : cases) {
    startAfresh();
    EXPECT_FALSE(runScript([&] { return shown(call(c.member, {text(u"k")})); },
                           [&] { worker->expect("FUNCTION: " + c.request).answer(c.answer); },
                           "ERROR: MAXException caught in 3ds max: " + c.report));
  }
}

TEST_F(FarmMembers, FailRenderRaisesItsMessageAnywhere) {
  EXPECT_EQ(scriptErrorOf([&] { call(u"FailRender", {text(u"no licence")}); }), "no licence");
  EXPECT_FALSE(runScript([&] { return shown(call(u"FailRender", {text(u"no licence")})); }, [] {},
                         "ERROR: Exception caught in 3ds max: -- Runtime error: no licence"));
}

TEST_F(FarmMembers, ADaemonRunInsideADaemonRunIsRefused) {
  const auto script = [this] { return shown(call(u"RunCorvantisDaemon", {FPValue::ofInt(1), text(u"t")})); };
  EXPECT_TRUE(runScript(
      script, [] {}, "SUCCESS: false"));
  EXPECT_EQ(scripts.printed(), u"RunCorvantisDaemon() was executed while the daemon is already running.");
}

}  // namespace
}  // namespace corvantis
