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

TEST_F(FarmMembers, QuestionsAreAskedAndAnswered) {
  const FPValue key = text(u"k \u00e9\u4e2d"), index = FPValue::ofInt(-3);
  const std::string ansiKey = "k \u00e9?";
  const struct {
    std::u16string member;
    std::vector<FPValue> arguments;
    std::string request, value, yes, no;
  } questions[] = {
      {u"GetJobInfoEntry", {key}, "GETJOBINFOENTRY " + ansiKey, "", "\"\"", "undefined"},
      {u"GetSubmitInfoEntry", {key}, "GETSUBMITINFOENTRY " + ansiKey, "value", "\"value\"", "undefined"},
      {u"GetSubmitInfoEntryElementCount", {key}, "GETSUBMITINFOENTRYELEMENTCOUNT " + ansiKey, "12", "12", "0"},
      {u"GetSubmitInfoEntryElement",
       {index, key},
       "GETSUBMITINFOENTRYELEMENT -3 " + ansiKey,
       "x",
       "\"x\"",
       "undefined"},
      {u"GetAuxFilename", {index}, "GETAUXFILE -3", "C:\\a.mat", "\"C:\\a.mat\"", "undefined"},
      {u"GetPathMappedFilename", {key}, "GETPATHMAPPEDFILENAME k \u00e9\u4e2d", "/mnt/k", "\"/mnt/k\"", "undefined"},
  };
  for (const auto& q : questions) {
    SCOPED_TRACE(q.request);
    startAfresh();
    const auto script = [&] {
      const std::string first = shown(call(q.member, q.arguments));
      return first + " or " + shown(call(q.member, q.arguments));
    };
    const auto workersPart = [&] {
      worker->expect("FUNCTION: " + q.request).answer("SUCCESS: " + q.value);
      worker->expect("FUNCTION: " + q.request).answer("ERROR: no");
    };
    EXPECT_TRUE(runScript(script, workersPart, "SUCCESS: " + q.yes + " or " + q.no));
  }
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

TEST_F(FarmMembers, QuestionsWithoutADaemonRunHaveNoAnswer) {
  const FPValue key = text(u"k"), one = FPValue::ofInt(1);
  EXPECT_EQ(shown(call(u"GetSubmitInfoEntryElementCount", {key})), "0");
  EXPECT_EQ(shown(call(u"GetSubmitInfoEntryElement", {one, key})), "undefined");
  EXPECT_EQ(shown(call(u"GetAuxFilename", {one})), "undefined");
  for (const auto* member : {u"GetJobInfoEntry", u"GetSubmitInfoEntry"})
    EXPECT_EQ(shown(call(member, {key})), "undefined");
  EXPECT_EQ(scriptErrorOf([&] { call(u"GetPathMappedFilename", {key}); }),
            "Error in GetPathMappedFilename: simple_socket: send called while not connected.");
}

TEST_F(FarmMembers, SilenceIsAScriptErrorThatTheScriptMayHandle) {
  const auto script = [this] { return scriptErrorOf([&] { call(u"GetAuxFilename", {FPValue::ofInt(0)}); }); };
  EXPECT_TRUE(runScript(
      script, [&] { worker->expect("FUNCTION: GETAUXFILE 0").letTimePass(clock, 120000); },
      "SUCCESS: Error in GetAuxFilename: simple_socket: Timed out waiting for header packet to arrive."));
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
