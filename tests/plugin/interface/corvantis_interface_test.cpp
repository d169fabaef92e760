// TessarynUtil as a host calls it: by function id, with a fake host behind it and a scripted worker before it.
#include "plugin/interface/corvantis_interface.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/environment.h"
#include "support/published_entries.h"
#include "support/worker_fixture.h"

namespace corvantis {
namespace {

using hostsdk::FPValue;

class TessarynUtil : public support::WorkerFixture {
 protected:
  void startAfresh() {
    tessarynUtil.reset();
    WorkerFixture::startAfresh();
    tessarynUtil = std::make_unique<CorvantisInterface>(*job, *connection, running);
  }

  FPValue text(const std::u16string& characters) { return FPValue::ofValue(scripts.newString(characters)); }

  FPValue call(const std::u16string& name, std::vector<FPValue> arguments = {}) {
    hostsdk::FPParams params;
    params.params = std::move(arguments);
    FPValue result;
    EXPECT_EQ(tessarynUtil->Invoke(support::idOf(tessarynUtil->published(), name), 0, result, &params),
              hostsdk::kDispatchOk);
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
  const hostsdk::PublishedInterface& published = tessarynUtil->published();
  EXPECT_EQ(published.name, u"TessarynUtil");
  EXPECT_EQ(published.id, (hostsdk::Interface_ID{0x83928748, 0xA38F941E}));
  EXPECT_EQ(published.flags, 4U);

  const std::map<int, std::string> types = {{hostsdk::kFpTypeFloat, "float"},
                                            {hostsdk::kFpTypeInt, "int"},
                                            {hostsdk::kFpTypeVoid, "void"},
                                            {hostsdk::kFpTypeValue, "value"},
                                            {hostsdk::kFpTypeBool, "bool"}};
  std::vector<std::string> entries;
  for (const hostsdk::PublishedFunction& function : published.functions) {
    std::string entry =
        std::to_string(function.id) + " " + types.at(function.resultType) + " " + support::narrow(function.name);
    for (const auto& parameter : function.parameters)
      entry += ", " + types.at(parameter.type) + " " + support::narrow(parameter.name);
    entries.push_back(entry);
  }
  for (const hostsdk::PublishedProperty& property : published.properties) {
    entries.push_back(std::to_string(property.getter) + " " + types.at(property.type) + " " +
                      support::narrow(property.name));
    EXPECT_EQ(property.setter, hostsdk::kNoFunction);
  }
  EXPECT_THAT(entries,
              testing::ElementsAre(
                  "0 bool Debug_StartJob, value fileName, value cameraName", "1 bool Debug_EndJob",
                  "2 bool Debug_RenderFrame, int frameIndex", "3 void SetTitle, value title",
                  "4 bool SetProgress, float percent", "5 void FailRender, value message",
                  "6 value GetSubmitInfoEntry, value key", "7 int GetSubmitInfoEntryElementCount, value key",
                  "8 value GetSubmitInfoEntryElement, int index, value key", "9 value GetJobInfoEntry, value key",
                  "10 value GetAuxFilename, int index", "11 value GetOutputFilename, int index",
                  "12 value GetPathMappedFilename, value inputFilename", "19 void LogMessage, value message",
                  "20 void WarnMessage, value message", "21 bool RunCorvantisDaemon, int portNumber, value token",
                  "13 int CurrentFrame", "14 int CurrentTask", "15 value SceneFileName", "16 value SceneFilePath",
                  "17 value JobsDataFolder", "18 value PluginsFolder"));
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
  const std::string ansiKey = "k \u00e9?",
                    badCast = "bad lexical cast: source type value could not be interpreted as target";
  const struct {
    std::u16string member;
    std::vector<FPValue> arguments;
    std::string request, value, yes, no, nonsense, failure;
  } questions[] = {
      {u"GetJobInfoEntry", {key}, "JOBINFOENTRY " + ansiKey, "", "\"\"", "undefined", "\xff", "Invalid UTF-8"},
      {u"GetSubmitInfoEntry", {key}, "SUBMITINFOENTRY " + ansiKey, "v", "\"v\"", "undefined", "\xff", "Invalid UTF-8"},
      {u"GetSubmitInfoEntryElementCount",
       {key},
       "SUBMITINFOENTRYELEMENTCOUNT " + ansiKey,
       "12",
       "12",
       "0",
       "x",
       badCast},
      {u"GetSubmitInfoEntryElement",
       {index, key},
       "SUBMITINFOENTRYELEMENT -3 " + ansiKey,
       "x",
       "\"x\"",
       "undefined",
       "\xff",
       "Invalid UTF-8"},
      {u"GetAuxFilename", {index}, "AUXFILE -3", "C:\\a.mat", "\"C:\\a.mat\"", "undefined", "\xff", "Invalid UTF-8"},
      {u"GetPathMappedFilename",
       {key},
       "PATHMAPPEDFILENAME k \u00e9\u4e2d",
       "/mnt/k",
       "\"/mnt/k\"",
       "undefined",
       "\xff",
       "Invalid UTF-8"},
  };
  for (const auto& q : questions) {
    SCOPED_TRACE(q.request);
    startAfresh();
    std::string answers;
    const auto script = [&] {
      for (int i = 0; i < 3; ++i) answers += shown(call(q.member, q.arguments)) + " ";
      return answers;
    };
    const auto workersPart = [&] {
      for (const std::string& answer : {"SUCCESS: " + q.value, std::string("ERROR: no"), "SUCCESS: " + q.nonsense})
        worker->expect("FUNCTION: GET" + q.request).answer(answer);
    };
    EXPECT_FALSE(runScript(script, workersPart, "ERROR: MAXException caught in 3ds max: " + q.failure));
    EXPECT_EQ(answers, q.yes + " " + q.no + " ");
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

TEST_F(TessarynUtil, FailRenderRaisesItsMessageAnywhere) {
  EXPECT_EQ(scriptErrorOf([&] { call(u"FailRender", {text(u"no licence")}); }), "no licence");
  EXPECT_FALSE(runScript([&] { return shown(call(u"FailRender", {text(u"no licence")})); }, [] {},
                         "ERROR: Exception caught in 3ds max: -- Runtime error: no licence"));
}

TEST_F(TessarynUtil, ADaemonRunInsideADaemonRunIsRefusedAndTheOuterOneGoesOn) {
  const auto script = [this] {
    const std::string refused = shown(call(u"RunCorvantisDaemon", {FPValue::ofInt(1), text(u"t")}));
    return refused + shown(call(u"CurrentTask"));
  };
  EXPECT_TRUE(runScript(
      script, [] {}, "SUCCESS: false0"));
  const std::string refusal = "RunCorvantisDaemon() was executed while the daemon is already running.";
  EXPECT_EQ(support::narrow(scripts.printed()), refusal);
  EXPECT_THAT(log.lines(), testing::Contains(refusal));
}

TEST_F(TessarynUtil, RunsAJobWithoutAWorker) {
  const support::TemporaryFolder folder;
  host.core.renderOutput.SetName(folder.wide("beauty.exr"));
  const auto fails = [this](bool result, const std::string& kind, const std::string& text) {
    EXPECT_FALSE(result);
    EXPECT_THAT(support::narrow(scripts.printed()), testing::EndsWith(kind + ": " + text + "\n"));
    EXPECT_EQ(log.lines().back(), text);
  };
  const auto faulting = [&](const char* operation, const std::function<bool()>& debug, const std::string& function) {
    host.calls.on(operation, support::writingToNull());
    fails(debug(), "SEH Exception", "Trapped SEH Exception in " + function + "(): Access Violation");
    host.calls.off(operation);
  };
  fails(debugEnd(), "Exception", "EndJob called when consistency check flag jobRunning was not set");
  fails(debugRender(), "Exception", "RenderFrame called when consistency check flag jobRunning was not set");
  faulting(
      "IsSceneFile", [this] { return debugStart(); }, "StartJob");
  EXPECT_TRUE(debugStart());
  fails(debugStart(), "Exception", "StartJob called when job was already running.");
  faulting(
      "SetTime", [this] { return debugRender(); }, "RenderFrame");
  EXPECT_TRUE(debugRender());
  EXPECT_EQ(host.core.time, 5 * host.core.ticksPerFrame);
  faulting(
      "ResetScene", [this] { return debugEnd(); }, "EndJob");
  host.calls.on("ResetScene", support::throwingMax(u"reset"));
  EXPECT_THROW(debugEnd(), hostsdk::MAXException) << "the host's own errors reach the script";
  host.calls.off("ResetScene");
  EXPECT_TRUE(debugEnd());
}

}  // namespace
}  // namespace corvantis
