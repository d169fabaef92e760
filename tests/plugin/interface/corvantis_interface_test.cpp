// TessarynUtil as a host calls it: by function id, with a fake host behind it and a scripted worker before it.
#include "plugin/interface/corvantis_interface.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "platform/environment.h"
#include "support/worker_fixture.h"

namespace corvantis {
namespace {

using hostsdk::FPValue;
using testing::Contains;

class TessarynUtil : public support::WorkerFixture {
 protected:
  void startAfresh() {
    tessarynUtil.reset();
    WorkerFixture::startAfresh();
    tessarynUtil = std::make_unique<CorvantisInterface>(*job, *connection, running);
  }

  // The id of a function or a property's getter, as the descriptor tells it.
  hostsdk::FunctionID idOf(const std::u16string& name) const {
    for (const auto& function : tessarynUtil->published().functions)
      if (function.name == name) return function.id;
    for (const auto& property : tessarynUtil->published().properties)
      if (property.name == name) return property.getter;
    ADD_FAILURE() << "nothing published as " << support::narrow(name);
    return hostsdk::kNoFunction;
  }

  FPValue text(const std::u16string& characters) { return FPValue::ofValue(scripts.newString(characters)); }

  FPValue call(const std::u16string& name, std::vector<FPValue> arguments = {}) {
    hostsdk::FPParams params;
    params.params = std::move(arguments);
    FPValue result;
    EXPECT_EQ(tessarynUtil->Invoke(idOf(name), 0, result, &params), hostsdk::kDispatchOk);
    return result;
  }

  // A result as a script would see it.
  std::string shown(const FPValue& value) {
    if (value.type == hostsdk::kFpTypeInt) return std::to_string(value.i);
    if (value.type == hostsdk::kFpTypeBool) return value.i != 0 ? "true" : "false";
    if (value.type != hostsdk::kFpTypeValue) return "nothing";
    return value.v == scripts.undefined() ? "undefined" : "\"" + support::narrow(value.v->text().value()) + "\"";
  }

  // Runs `script` as a script of the worker's, in the course of which `worker`'s next steps happen. What it gives back
  // is the script's text.
  bool runScript(const std::function<std::string()>& script, const std::function<void()>& workersPart,
                 const std::string& reply) {
    scripts.evaluation = [&](const std::u16string&) {
      const std::string result = script();
      return scripts.newString(std::u16string(result.begin(), result.end()));
    };
    worker->handshake("token").send("ExecuteStringScript,12,x").expect("STARTED");
    workersPart();
    worker->expect(reply);
    if (reply.rfind("SUCCESS", 0) == 0) worker->close();
    worker->start();
    const auto result = call(u"RunCorvantisDaemon", {FPValue::ofInt(worker->port()), text(u"token")});
    worker->finish();
    return result.i != 0;
  }

  // The text of the script error that a call raises.
  std::string scriptErrorOf(const std::function<void()>& work) {
    try {
      work();
    } catch (const hostsdk::RuntimeError& error) {
      return support::narrow(error.message());
    }
    return "no script error";
  }

  // A job without a worker.
  bool debugStart() { return call(u"Debug_StartJob", {text(u"C:\\a.max"), text(u"")}).i != 0; }
  bool debugRender() { return call(u"Debug_RenderFrame", {FPValue::ofInt(5)}).i != 0; }
  bool debugEnd() { return call(u"Debug_EndJob").i != 0; }

  std::unique_ptr<CorvantisInterface> tessarynUtil = std::make_unique<CorvantisInterface>(*job, *connection, running);
};

TEST_F(TessarynUtil, PublishesEveryEntryUnderItsId) {
  constexpr int f = hostsdk::kFpTypeFloat, i = hostsdk::kFpTypeInt, n = hostsdk::kFpTypeVoid, v = hostsdk::kFpTypeValue,
                b = hostsdk::kFpTypeBool;
  const hostsdk::PublishedInterface& published = tessarynUtil->published();
  EXPECT_EQ(published.name, u"TessarynUtil");
  EXPECT_EQ(published.id, (hostsdk::Interface_ID{0x83928748, 0xA38F941E}));
  EXPECT_EQ(published.flags, 4U);

  using Parameters = std::vector<std::pair<std::u16string, int>>;
  const std::tuple<int, std::u16string, int, Parameters> functions[] = {
      {0, u"Debug_StartJob", b, {{u"fileName", v}, {u"cameraName", v}}},
      {1, u"Debug_EndJob", b, {}},
      {2, u"Debug_RenderFrame", b, {{u"frameIndex", i}}},
      {3, u"SetTitle", n, {{u"title", v}}},
      {4, u"SetProgress", b, {{u"percent", f}}},
      {5, u"FailRender", n, {{u"message", v}}},
      {6, u"GetSubmitInfoEntry", v, {{u"key", v}}},
      {7, u"GetSubmitInfoEntryElementCount", i, {{u"key", v}}},
      {8, u"GetSubmitInfoEntryElement", v, {{u"index", i}, {u"key", v}}},
      {9, u"GetJobInfoEntry", v, {{u"key", v}}},
      {10, u"GetAuxFilename", v, {{u"index", i}}},
      {11, u"GetOutputFilename", v, {{u"index", i}}},
      {12, u"GetPathMappedFilename", v, {{u"inputFilename", v}}},
      {19, u"LogMessage", n, {{u"message", v}}},
      {20, u"WarnMessage", n, {{u"message", v}}},
      {21, u"RunCorvantisDaemon", b, {{u"portNumber", i}, {u"token", v}}},
  };
  ASSERT_EQ(published.functions.size(), std::size(functions));
  for (std::size_t k = 0; k < std::size(functions); ++k) {
    const hostsdk::PublishedFunction& function = published.functions[k];
    Parameters parameters;
    for (const auto& parameter : function.parameters) parameters.emplace_back(parameter.name, parameter.type);
    EXPECT_EQ(std::tuple(int{function.id}, function.name, function.resultType, parameters), functions[k]);
  }

  const std::pair<std::u16string, int> properties[] = {{u"CurrentFrame", i},   {u"CurrentTask", i},
                                                       {u"SceneFileName", v},  {u"SceneFilePath", v},
                                                       {u"JobsDataFolder", v}, {u"PluginsFolder", v}};
  ASSERT_EQ(published.properties.size(), std::size(properties));
  for (std::size_t k = 0; k < std::size(properties); ++k) {
    const hostsdk::PublishedProperty& property = published.properties[k];
    EXPECT_EQ(property.getter, 13 + k);
    EXPECT_EQ(property.setter, hostsdk::kNoFunction);
    EXPECT_EQ(std::pair(property.name, property.type), properties[k]);
  }
}

TEST_F(TessarynUtil, PropertiesTellTheJobOfADaemonRun) {
  job->currentFrame = job->currentTask = 7;
  job->sceneFileName = u"a.max";
  job->sceneFilePath = u"C:\\scenes";
  job->settings.jobsDataFolder = u"D:\\jobs";
  job->savedOutputFiles = {u"a.exr", u"b.exr"};
  host.core.ticksPerFrame = 200;
  host.core.time = 10 * 200 + 199;
  const auto all = [this] {
    std::string values;
    for (const auto* name :
         {u"CurrentFrame", u"CurrentTask", u"SceneFileName", u"SceneFilePath", u"JobsDataFolder", u"PluginsFolder"})
      values += shown(call(name)) + " ";
    for (const std::int32_t index : {-1, 0, 1, 2, 2147483647})
      values += shown(call(u"GetOutputFilename", {FPValue::ofInt(index)})) + " ";
    return values;
  };
  const std::string files = R"(undefined "a.exr" "b.exr" undefined undefined )";
  EXPECT_EQ(all(), "10 -1 undefined undefined undefined undefined " + files);
  EXPECT_TRUE(runScript(
      all, [] {}, R"(SUCCESS: 12 7 "a.max" "C:\scenes" "D:\jobs" "" )" + files));
}

TEST_F(TessarynUtil, NoticesReachTheWorker) {
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

TEST_F(TessarynUtil, QuestionsAreAskedAndAnswered) {
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

TEST_F(TessarynUtil, AnswersThatMakeNoSenseBecomeHostErrors) {
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

TEST_F(TessarynUtil, WithoutADaemonRunNoticesGoToTheListenerAndQuestionsHaveNoAnswer) {
  const FPValue key = text(u"k"), one = FPValue::ofInt(1);
  call(u"LogMessage", {text(u"one")});
  call(u"WarnMessage", {text(u"two")});
  call(u"SetTitle", {text(u"three")});
  EXPECT_EQ(shown(call(u"SetProgress", {FPValue::ofFloat(5)})), "true");
  EXPECT_EQ(support::narrow(scripts.printed()), "one\ntwo\nTitle was set to \"three\"\n");
  EXPECT_EQ(shown(call(u"GetSubmitInfoEntryElementCount", {key})), "0");
  EXPECT_EQ(shown(call(u"GetSubmitInfoEntryElement", {one, key})), "undefined");
  EXPECT_EQ(shown(call(u"GetAuxFilename", {one})), "undefined");
  for (const auto* member : {u"GetJobInfoEntry", u"GetSubmitInfoEntry"})
    EXPECT_EQ(shown(call(member, {key})), "undefined");
  EXPECT_EQ(scriptErrorOf([&] { call(u"GetPathMappedFilename", {key}); }),
            "Error in GetPathMappedFilename: simple_socket: send called while not connected.");
}

TEST_F(TessarynUtil, SilenceIsAScriptErrorThatTheScriptMayHandle) {
  const auto script = [this] { return scriptErrorOf([&] { call(u"GetAuxFilename", {FPValue::ofInt(0)}); }); };
  EXPECT_TRUE(runScript(
      script, [&] { worker->expect("FUNCTION: GETAUXFILE 0").letTimePass(clock, 120000); },
      "SUCCESS: Error in GetAuxFilename: simple_socket: Timed out waiting for header packet to arrive."));
}

TEST_F(TessarynUtil, FailRenderRaisesItsMessageAnywhere) {
  EXPECT_EQ(scriptErrorOf([&] { call(u"FailRender", {text(u"no licence")}); }), "no licence");
  EXPECT_FALSE(runScript([&] { return shown(call(u"FailRender", {text(u"no licence")})); }, [] {},
                         "ERROR: Exception caught in 3ds max: -- Runtime error: no licence"));
}

TEST_F(TessarynUtil, ADaemonRunInsideADaemonRunIsRefused) {
  const auto script = [this] { return shown(call(u"RunCorvantisDaemon", {FPValue::ofInt(1), text(u"t")})); };
  EXPECT_TRUE(runScript(
      script, [] {}, "SUCCESS: false"));
  EXPECT_EQ(scripts.printed(), u"RunCorvantisDaemon() was executed while the daemon is already running.");
}

TEST_F(TessarynUtil, RunsAJobWithoutAWorker) {
  const support::TemporaryFolder folder;
  host.core.renderOutput.SetName(folder.wide("beauty.exr"));
  EXPECT_FALSE(debugEnd());
  const std::string text = "EndJob called when consistency check flag jobRunning was not set";
  EXPECT_EQ(support::narrow(scripts.printed()), "Exception: " + text + "\n");
  EXPECT_THAT(log.lines(), Contains(text));
  EXPECT_FALSE(debugRender());
  EXPECT_THAT(log.lines(), Contains("RenderFrame called when consistency check flag jobRunning was not set"));
  EXPECT_TRUE(debugStart());
  EXPECT_FALSE(debugStart());
  EXPECT_THAT(log.lines(), Contains("StartJob called when job was already running."));
  EXPECT_TRUE(debugRender());
  EXPECT_EQ(host.core.time, 5 * host.core.ticksPerFrame);
  host.calls.on("ResetScene", support::throwingMax(u"reset"));
  EXPECT_THROW(debugEnd(), hostsdk::MAXException) << "the host's own errors reach the script";
  host.calls.off("ResetScene");
  EXPECT_TRUE(debugEnd());
}

TEST_F(TessarynUtil, ReportFaultsToListenerAndLog) {
  host.calls.on("IsSceneFile", support::writingToNull());
  EXPECT_FALSE(debugStart());
  EXPECT_EQ(support::narrow(scripts.printed()),
            "SEH Exception: Trapped SEH Exception in StartJob(): Access Violation\n");
  EXPECT_THAT(log.lines(), Contains("Trapped SEH Exception in StartJob(): Access Violation"));
  host.calls.off("IsSceneFile");
  EXPECT_TRUE(debugStart());
  host.calls.on("SetTime", support::dividingByZero());
  EXPECT_FALSE(debugRender());
  EXPECT_THAT(log.lines(), Contains("Trapped SEH Exception in RenderFrame(): Integer Divide By Zero"));
  host.calls.on("ResetScene", support::writingToNull());
  EXPECT_FALSE(debugEnd());
  EXPECT_THAT(log.lines(), Contains("Trapped SEH Exception in EndJob(): Access Violation"));
}

}  // namespace
}  // namespace corvantis
