#include "plugin/daemon/run_daemon.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <regex>
#include <stdexcept>

#include "platform/environment.h"
#include "support/daemon_fixture.h"
#include "support/platform_kind.h"
#include "support/socket_errors.h"

namespace corvantis {
namespace {

using namespace testing;

class RunDaemon : public DaemonTest {
 protected:
  // A command during which anything can be made to happen, and the reply that it ends with.
  bool runScript(support::FakeScriptRuntime::Evaluation evaluation, const std::string& report) {
    startAfresh();
    scripts.evaluation = std::move(evaluation);
    worker->handshake("token").send("ExecuteStringScript,1,x").expect("STARTED");
    worker->expectThat(testing::StartsWith(report));
    return run();
  }
};

TEST_F(RunDaemon, ShakesHandsAndEndsWellWhenTheWorkerCloses) {
  EXPECT_TRUE(std::regex_match(buildVersionString(), std::regex(R"([A-Z][a-z]{2} [ \d]\d \d{4} \d\d:\d\d:\d\d R)")));
  worker->expect("t\u00f6k\u4e2d").send("TessarynStartup").expect("Corvantis " + buildVersionString()).close();
  EXPECT_TRUE(run(u"t\u00f6k\u4e2d"));
  EXPECT_THAT(log.lines(), ElementsAre("Thread: " + std::to_string(platform::currentThreadId()), "running daemon...",
                                       "Returning TRUE"));
}

TEST_F(RunDaemon, RefusesEveryOtherHandshake) {
  for (const std::string word : {"tessarynstartup", "TessarynStartup ", "Tessaryn", ""}) {
    startAfresh();
    worker->expect("token").send(word);
    worker->expect("Corvantis " + buildVersionString() + "   Incompatible plugin versions detected, exiting.");
    worker->expect("ERROR: Exception caught in 3ds max: Incorrect handshake with Tessaryn plugin.");
    EXPECT_FALSE(run());
    EXPECT_THAT(log.lines(), Contains("Exception: Incorrect handshake with Tessaryn plugin."));
  }
  EXPECT_THAT(clock.sleeps(), ElementsAre(150, 150, 150, 150));
}

// The time-out is that of the whole message, however it is spread.
TEST_F(RunDaemon, ASilentHandshakeTimesOutAndLeavesTheConnectionOpen) {
  using namespace std::string_literals;
  const std::pair<std::function<void()>, std::string> cases[] = {
      {[&] { worker->letTimePass(clock, 120000); }, "header packet to arrive."},
      {[&] { worker->letTimePass(clock, 60000).letTimePass(clock, 60000); }, "header packet to arrive."},
      {[&] { worker->letTimePass(clock, 60000).sendRaw("\0\0"s).letTimePass(clock, 60000); }, "data."},
      {[&] { worker->stallAfterHeader(15).letTimePass(clock, 119999).sendRaw("Tess").letTimePass(clock, 1); }, "data."},
  };
  for (const auto& [wait, text] : cases) {
    startAfresh();
    worker->expect("token");
    wait();
    worker->expect("ERROR: Exception caught in 3ds max: simple_socket: Timed out waiting for " + text);
    EXPECT_FALSE(run());
    EXPECT_TRUE(connection->isConnected());
  }
  // Whatever the number: this is found out before it is looked at.
  EXPECT_FALSE(RunCorvantisDaemon(*job, *connection, running, 70000, u"token"));
  EXPECT_EQ(log.lines().back(), "Exception: simple_socket::connect: Already connected.");
}

TEST_F(RunDaemon, FailsWhereNobodyListens) {
  for (const std::int32_t port : {-1, 65536, 70000}) {
    EXPECT_FALSE(RunCorvantisDaemon(*job, *connection, running, port, u"token"));
    EXPECT_THAT(log.lines(),
                Contains("Exception: connect: Failed to connect to server at port " + std::to_string(port)));
  }
  EXPECT_EQ(clock.sleeps().size(), 3U) << "the pause comes whether or not a report could be sent";
}

TEST_F(RunDaemon, DrainsTheMessageQueueWhileTheWorkerIsIdle) {
  worker->handshake("token");
  for (int i = 0; i < 5; ++i) worker->letTimePass(clock, 120000);
  worker->then([this] { clock.awaitWaiter(); }).send("CurrentTask,7").close();
  const std::uint64_t before = platform::pumpCount();
  EXPECT_TRUE(run());
  EXPECT_EQ(platform::pumpCount() - before, 5U);
  EXPECT_EQ(job->currentTask, 7);
}

TEST_F(RunDaemon, FramesEveryCommandInTheLog) {
  runLine("CurrentTask,\"3\"", {});
  EXPECT_THAT(log.lines(), ElementsAre(testing::_, "running daemon...", "", "Got command: CurrentTask,\"3\"", "",
                                       "Command: CurrentTask,\"3\"", "CurrentTask", "3", "", "Returning TRUE"));
}

TEST_F(RunDaemon, ReportsAMessageThatIsNoCommandLine) {
  const std::pair<std::string, std::string> cases[] = {
      {"StartJob,C:\\scenes\\a.max,", "unknown escape sequence"},
      {"\xff", "Invalid UTF-8"},
      {"", "simple_socket::receive: Invalid packet size (given 100001)"}};
  for (const auto& [line, text] : cases) {
    startAfresh();
    worker->handshake("token");
    line.empty() ? worker->stallAfterHeader(100001) : worker->send(line);
    worker->expect("ERROR: Exception caught in 3ds max: " + text);
    EXPECT_FALSE(run());
    EXPECT_THAT(log.lines(), Contains("Exception: " + text));
  }
}

TEST_F(RunDaemon, ReportsEveryKindOfExceptionByItsType) {
  using Value = hostsdk::Value;
  const struct {
    support::FakeScriptRuntime::Evaluation script;
    std::string reply, logged;
  } cases[] = {
      {[](auto&) -> Value* { throw std::bad_alloc(); },
       "Exception caught in 3ds max: Out of memory.  There was not enough memory available to fulfill a memory "
       "request.",
       "Exception: std::bad_alloc"},
      {[](auto&) -> Value* { throw std::logic_error("odd"); }, "Exception caught in 3ds max: odd", "Exception: odd"},
      {[](auto&) -> Value* { throw hostsdk::MAXException(u"host \u00e9rror"); },
       "MAXException caught in 3ds max: host \u00e9rror", "MAXException: host \xe9rror"},
      {[](auto&) -> Value* { throw 5; }, "Unknown exception caught. (3ds max may have crashed)",
       "Unknown exception caught"},
      {[](auto&) -> Value* { throw hostsdk::RuntimeError(u"bad"); },
       "Exception caught in 3ds max: -- Runtime error: bad", "Exception: -- Runtime error: bad"},
      {[&](auto&) { return scripts.newString(u"no text: \xd800"); }, "Exception caught in 3ds max: Invalid UTF-16",
       "Exception: Invalid UTF-16"},
  };
  for (const auto& c : cases) {
    EXPECT_FALSE(runScript(c.script, "ERROR: " + c.reply));
    EXPECT_THAT(log.lines(), Contains(c.logged));
  }
  // A script error inside an evaluation is a standard exception with what it prints; elsewhere it comes as it is.
  startAfresh();
  host.calls.on("SetTime", []() -> std::optional<int> { throw hostsdk::RuntimeError(u"time"); });
  worker->handshake("token").send("ExecuteMaxScriptFile,a.ms,true,1,false").expect("STARTED");
  worker->expect("ERROR: Maxscript exception:-- Runtime error: time");
  EXPECT_FALSE(run());
  EXPECT_THAT(log.lines(), Contains("Maxscript exception caught: -- Runtime error: time"));
  EXPECT_EQ(scripts.frameDepth(), 0U);
}

TEST_F(RunDaemon, SurvivesAFaultInACommandAndCanRunAgain) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "a command that faults is abandoned where it stands, with the memory it held: a leak by design";
#endif
  EXPECT_FALSE(runScript([hook = support::writingToNull()](auto&) -> hostsdk::Value* { return hook(), nullptr; },
                         "ERROR: SEH exception: SEH Exception trapped in 3ds max: Access Violation\nProcess:  "));
  EXPECT_THAT(log.lines(), Contains("SEH exception caught"));
  EXPECT_TRUE(connection->isConnected());

  startAfresh();
  runLines({{"Nonsense", "ERROR: Unexpected command \"Nonsense\" received."}});
}

// Whatever socket it was that the command lost: the worker's stands.
TEST_F(RunDaemon, AbandonsACommandWhoseWaitFailed) {
  const support::FakeScriptRuntime::Evaluation evaluations[] = {
      [](auto&) -> hostsdk::Value* { throw win32::simple_socket_timeout_error("inside"); },
      [](auto&) -> hostsdk::Value* { throw win32::simple_socket_disconnect_error("inside"); }};
  for (const auto& evaluation : evaluations) {
    startAfresh();
    scripts.evaluation = evaluation;
    worker->handshake("token").send("ExecuteStringScript,1,x").expect("STARTED");
    worker->send("Nonsense").expect("ERROR: Unexpected command \"Nonsense\" received.").close();
    EXPECT_TRUE(run());
  }
}

TEST_F(RunDaemon, EndsBadlyWhenTheWorkerClosesInTheHandshake) {
  worker->expect("token").close();
  EXPECT_FALSE(run());
  EXPECT_FALSE(connection->isConnected());
  EXPECT_EQ(log.lines().back(), "Exception: simple_socket::receive: socket was disconnected while reading header.");
}

TEST_F(RunDaemon, EndsBadlyWhenTheConnectionBreaks) {
  worker->handshake("token").reset();
  worker->start();
  const bool result = RunCorvantisDaemon(*job, *connection, running, worker->port(), u"token");
  worker->finish();
  EXPECT_FALSE(connection->isConnected() || running);
  if (support::runsUnderWine()) return;  // where a connection that is broken off looks like one that has ended
  EXPECT_FALSE(result);
  EXPECT_EQ(log.lines().back(), "Exception: recv: socket error trying to receive data: WSAError code " +
                                    std::to_string(support::kConnectionReset));
}

TEST_F(RunDaemon, PassesOnTheFailureToReport) {
  // Too much for one message, so that the reply and then the report of its failure cannot both be sent.
  EXPECT_FALSE(
      runScript([&](auto&) { return scripts.newString(std::u16string(100000, u'x')); },
                "ERROR: Exception caught in 3ds max: simple_socket::send: Tried to send too much data at once."));

  startAfresh();
  worker->handshake("token").send("ExecuteStringScript,1,x").expect("STARTED");
  scripts.evaluation = [&](const std::u16string&) -> hostsdk::Value* {
    throw std::runtime_error(std::string(100000, 'x'));
  };
  worker->start();
  EXPECT_THROW(RunCorvantisDaemon(*job, *connection, running, worker->port(), u"token"), win32::simple_socket_error);
  EXPECT_FALSE(running);
  worker->finish();
}

}  // namespace
}  // namespace corvantis
