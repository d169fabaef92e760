// The script commands through the socket.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/daemon_fixture.h"

namespace corvantis {
namespace {

using testing::ElementsAre;

class ScriptCommands : public DaemonTest {
 protected:
  ScriptCommands() {
    folder.write("pre.ms", "x");
    const std::string path = folder.path("pre.ms");
    scripts.files[std::u16string(path.begin(), path.end())] = u"x";
  }

  // The line that runs the script file, with its path as a worker escapes it.
  std::string fileLine(const std::string& rest) const {
    return "ExecuteMaxScriptFile," + folder.path("pre.ms") + "," + rest;
  }
  void returns(std::function<hostsdk::Value*()> value) {
    scripts.evaluation = [value = std::move(value)](const std::u16string&) { return value(); };
  }
  hostsdk::Value* number() { return scripts.newOther(u"42", u"42"); }
  hostsdk::Value* node() { return scripts.newOther(std::nullopt, u"$Box001"); }

  const support::TemporaryFolder folder;
};

TEST_F(ScriptCommands, FileResultsBecomeReplies) {
  const std::string failed = "ERROR: ExecuteMaxScriptFile: Script did not return success. Returned value was";
  const std::string noText =
      "ERROR: ExecuteMaxScriptFile: Requested a return string, but the script did not return a string. Value received "
      "was: ";
  const struct {
    std::string returnText;
    std::function<hostsdk::Value*()> value;
    std::string reply;
  } cases[] = {
      {"false", [&] { return scripts.boolean(true); }, "SUCCESS"},
      {"false", [&] { return scripts.ok(); }, "SUCCESS"},
      {"FALSE", [&] { return scripts.boolean(false); }, failed + " false."},
      {"False", [&] { return number(); }, failed + ": 42."},
      {"false", [&] { return node(); }, failed + ": $Box001."},
      {"false", [&] { return scripts.newString(u"true"); }, failed + ": true."},
      {"false", [&]() -> hostsdk::Value* { return nullptr; }, failed + ": undefined."},
      {"true", [&] { return scripts.newString(u"a, \u00e9\u4e2d"); }, "SUCCESS: a, \u00e9\u4e2d"},
      {"TRUE", [&] { return scripts.newString(u""); }, "SUCCESS: "},
      {"true", [&] { return number(); }, noText + "42'."},
      {"True", [&] { return scripts.boolean(true); }, noText + "true'."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.reply);
    startAfresh();
    returns(c.value);
    EXPECT_TRUE(runLine(fileLine("false,0," + c.returnText), {"STARTED", c.reply}));
    EXPECT_EQ(scripts.frameDepth(), 0U);
  }
}

TEST_F(ScriptCommands, FileParametersAreCheckedAfterStarted) {
  const std::string prefix = "ERROR: ExecuteMaxScriptFile: ";
  const std::pair<std::string, std::string> cases[] = {
      {"yes,0,false",
       "Parameter 1 specifies whether or not to set the current frame. It must be 'true' or 'false'. Value received "
       "was: 'yes'."},
      {"false,abc,maybe",
       "Parameter 2 specifies the current frame (it is ignored if parameter 1 is false). This value must be an "
       "integer. Value received was: 'abc'."},
      {"true,1,TRUE ",
       "Parameter 1 specifies whether or not to return the value of the MaxScript execution as a string. It must be "
       "'true' or 'false'. Value received was: 'TRUE '."},
      {"true,2147483647,true", "Frame 2147483647 is outside the range of scene times."},
  };
  for (const auto& [parameters, text] : cases) {
    startAfresh();
    EXPECT_TRUE(runLine(fileLine(parameters), {"STARTED", prefix + text}));
    EXPECT_TRUE(scripts.sources.empty());
    EXPECT_EQ(job->currentFrame, 0);
    EXPECT_EQ(host.core.time, 0);
  }
}

TEST_F(ScriptCommands, AFileMayRunAtAFrame) {
  host.core.ticksPerFrame = 200;
  returns([&] {
    EXPECT_EQ(host.core.time, 2000);
    return scripts.ok();
  });
  EXPECT_TRUE(runLine(fileLine("TRUE,10,False"), {"STARTED", "SUCCESS"}));
  EXPECT_EQ(job->currentFrame, 10);
  EXPECT_THAT(logOfCommand(),
              ElementsAre("Set Time to 10", "GetTime(): 2000", "Executing script " + folder.path("pre.ms"),
                          "Done Executing script " + folder.path("pre.ms")));
  EXPECT_EQ(host.calls.count("SetTime"), 1);

  startAfresh();
  EXPECT_TRUE(runLine(fileLine("false,11,false"), {"STARTED", "SUCCESS"}));
  EXPECT_EQ(job->currentFrame, 0);
  EXPECT_EQ(host.calls.count("SetTime"), 0);
}

TEST_F(ScriptCommands, StringResultsBecomeReplies) {
  const std::pair<std::function<hostsdk::Value*()>, std::string> cases[] = {
      {[&] { return scripts.newString(u"done"); }, "SUCCESS: done"},
      {[&] { return node(); }, "ERROR: Script did not return a string: $Box001"},
      {[&]() -> hostsdk::Value* { return nullptr; }, "ERROR: Script did not return a string: undefined"},
  };
  for (const auto& [value, reply] : cases) {
    startAfresh();
    returns(value);
    EXPECT_TRUE(runLine("ExecuteStringScript,-7,\"f \\\"a\\\", 1\",what is more is not looked at", {"STARTED", reply}));
    EXPECT_EQ(job->currentFrame, -7);
    EXPECT_EQ(scripts.sources.back(), u"(f \"a\", 1)");
    EXPECT_EQ(host.calls.count("SetTime"), 0);
    EXPECT_THAT(logOfCommand(), ElementsAre("Executing script... ", "... Done Executing script "));
  }
  // A bad frame is replied in place of STARTED.
  startAfresh();
  runLine("ExecuteStringScript,x,y", {"ERROR: ExecuteScript: Parameter 1 , \"x\", is not a valid frame number."});
  EXPECT_EQ(job->currentFrame, 0);
  EXPECT_EQ(scripts.sources.size(), std::size(cases));
}

}  // namespace
}  // namespace corvantis
