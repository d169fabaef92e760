// Real processes that start, lie, crash, flood and stall by order.
#include "worker/host/host_link.h"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <optional>

#include "platform/clock.h"
#include "platform/process/process_tree.h"
#include "support/build_folders.h"
#include "support/environment.h"
#include "support/temporary_folder.h"
#include "worker/conversation/session.h"
#include "worker/host/output_lines.h"

namespace worker {
namespace {

using testing::Contains;
using testing::HasSubstr;

// Goes with the system's until it is told otherwise.
class StrangeClock : public platform::Clock {
 public:
  std::uint32_t tickCount() override {
    const std::uint32_t step = std::min(hurry_, 1000U);
    hurry_ -= step;
    return system_.tickCount() + (ahead_ += step);
  }
  void sleep(std::uint32_t) override {}
  platform::WaitResult waitReadable(platform::SocketHandle socket, std::uint32_t time) override {
    return system_.waitReadable(socket, time);
  }
  void jump(std::uint32_t milliseconds) { ahead_ += milliseconds; }
  // Lets the time pass within the next looks at the clock.
  void hurry(std::uint32_t milliseconds) { hurry_ = milliseconds; }

 private:
  platform::Clock& system_ = platform::clock();
  std::uint32_t hurry_ = 0;
  std::uint32_t ahead_ = 0;
};

class HostLinkTest : public testing::Test, public JobObserver {
 protected:
  HostLinkTest() {
    options_.keeper = support::programFolder() + "/tessaryn-keeper";
    options_.look = std::chrono::milliseconds(1);
    options_.stop = &stop_.emplace();
    options_.onHostLine = [this](const std::string& line) {
      lines_.push_back(line);
      if (line == "stalls") clock_.hurry(304000);
      if (line == "takes a minute") clock_.hurry(64000);
      if (line == "was suspended") clock_.jump(1000000);
      if (line == "asks to stop") std::raise(SIGTERM);
    };
    options_.onWarning = [this](const std::string& line) { warnings_.push_back(line); };
  }

  void order(const std::string& orders) {
    options_.command = {support::testProgramFolder() + "/scripted_host", orders};
  }

  JobResult run() {
    Job job;
    job.scene = "/a.gltf";
    job.frames = {1, 2};
    job.preJobScripts = {"/pre.ms"};
    try {
      HostLink link(options_);
      JobResult result = Session(job, link, *this, [] { return 0.0; }).run();
      if (result.status == JobStatus::done) endedWell_ = link.finish(std::chrono::seconds(20));
      return result;
    } catch (const HostFailure& e) {
      return {JobStatus::hostFailed, e.what(), "", {}};
    }
  }
  JobResult run(const std::string& orders) {
    order(orders);
    return run();
  }

  StrangeClock clock_;
  platform::ClockReplacement replacement_{clock_};
  std::optional<platform::StopSignals> stop_;
  HostOptions options_;
  std::vector<std::string> lines_, warnings_;
  bool endedWell_ = false;
};

TEST_F(HostLinkTest, SaysHowTheHostWasLost) {
  const struct {
    const char* name;
    const char* orders;
    std::vector<const char*> named;
  } cases[] = {
      {"ends before it connects",
       "print:no_licence exit:3",
       {"ended before it could connect", "exit code 3", "it last said:\n  no licence"}},
      {"closes early", "come exit:0", {"closed the connection early", "exit code 0"}},
      {"is no plug-in", "come say:I_am_a_teapot stall", {"not part of the protocol", "teapot"}},
      {"is killed",
       "come serve:RenderTask,1 say:STARTED print:about_to_fall fault:9",
       {"closed the connection early", "ended by signal 9", "about to fall"}},
      {"leaves processes behind", "fork come serve:RenderTask,1 fault:11", {"ended by signal 11"}},
      {"exits", "come serve:RenderTask,2 exit:7", {"closed the connection early", "exit code 7"}},
      {"sends too much", "come serve:RenderTask,1 raw:huge stall", {"at most 100000 bytes", "2147483647"}},
      {"never connects", "print:stalls stall", {"did not connect within 300 seconds"}},
      {"stalls in a frame",
       "come serve:RenderTask,1 say:STARTED print:stalls stall",
       {"not answer within 300 seconds"}},
      {"prints and stalls",
       "come serve:RenderTask,1 print:stalls flood:lines stall",
       {"not answer within 300 seconds"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const JobResult result = run(c.orders);
    EXPECT_EQ(result.status, JobStatus::hostFailed);
    for (const char* named : c.named) EXPECT_THAT(result.message, HasSubstr(named));
    EXPECT_TRUE(platform::processesBelow(platform::ownProcessId()).empty()) << "nothing is left of it";
  }
}

TEST_F(HostLinkTest, SaysWhyAHostCannotBeStarted) {
  support::TemporaryFolder folder;
  const struct {
    const char* name;
    std::vector<std::string> command;
    std::string keeper, temporary, named;
  } cases[] = {
      {"no such program", {"no-such-host"}, "", "", "the host \"no-such-host\": No such file or directory"},
      {"not a program", {"/dev/null"}, "", "", "the host \"/dev/null\": Permission denied"},
      {"no keeper", {"/bin/true"}, "/no/keeper", "", "its keeper /no/keeper: No such file or directory"},
      {"no folder", {"/bin/true"}, "", "/no/folder", "a private folder in /no/folder: No such file or directory"},
      {"a folder that hosts misread", {"/bin/true"}, "", folder.path("a\\b"), "backslash"},
  };
  const std::string keeper = options_.keeper;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const support::Environment temporary("TMPDIR", c.temporary.empty() ? folder.path() : c.temporary);
    options_.command = c.command;
    options_.keeper = c.keeper.empty() ? keeper : c.keeper;
    const JobResult result = run();
    EXPECT_THAT(result.message, HasSubstr("Cannot start the host"));
    EXPECT_THAT(result.message, HasSubstr(c.named));
  }
}

TEST_F(HostLinkTest, StrangersAtTheDoorCostNothing) {
  const struct {
    const char* guests;
    std::size_t sentAway;
  } cases[] = {{"guest:silent", 0}, {"guest:half", 0}, {"guest:wrong", 1},
               {"guest:huge", 1},   {"guest:web", 1},  {"guest:gone", 1},
               {"guest:300", 0},    {"guest:450", 51}, {"guest:wrong guest:web guest:silent guest:half", 2}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.guests);
    warnings_.clear();
    const JobResult result = run(std::string(c.guests) + " come serve");
    EXPECT_EQ(result.status, JobStatus::done) << result.message;
    EXPECT_EQ(result.frames.size(), 2U);
    EXPECT_TRUE(endedWell_);
    if (c.sentAway == 0)
      EXPECT_TRUE(warnings_.empty());
    else
      EXPECT_THAT(warnings_, Contains(HasSubstr(std::to_string(c.sentAway) + " other connection")));
  }
}

TEST_F(HostLinkTest, AHostHasNothingOfTheWorkersAndAFolderOfItsOwn) {
  support::TemporaryFolder folder;
  const support::Environment temporary("TMPDIR", folder.path());
  const std::string orphan = folder.write("tessaryn-orphan/.owner", "");
  folder.write("tessaryn-orphan/start.ms", "left by a worker that was killed");
  folder.write("tessaryn-other/notes", "not a worker's");
  ASSERT_EQ(run("show:handles show:folder show:mode come serve").status, JobStatus::done);
  EXPECT_THAT(lines_, Contains("handles 0 1 2"));
  EXPECT_THAT(lines_, Contains("mode 600 700"));
  EXPECT_THAT(lines_, Contains(testing::MatchesRegex("folder " + folder.path() + "/tessaryn-[^ ]*/tmp")));
  EXPECT_FALSE(folder.exists("tessaryn-orphan"));
  EXPECT_TRUE(folder.exists("tessaryn-other/notes"));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1) << "its own folder went with it";
}

TEST_F(HostLinkTest, AHostThatLaunchesAnotherOrLeavesOneBehindEndsWell) {
  for (const char* orders : {"launch come serve", "fork come serve", "detach come serve"}) {
    SCOPED_TRACE(orders);
    EXPECT_EQ(run(orders).status, JobStatus::done);
    EXPECT_TRUE(endedWell_);
    EXPECT_TRUE(platform::processesBelow(platform::ownProcessId()).empty());
  }
}

TEST_F(HostLinkTest, AKilledKeeperTakesItsHostAlong) {
  order("fork detach come serve:RenderTask,1 print:ready stall");
  options_.onHostLine = [](const std::string&) {
    for (const auto& process : platform::processesBelow(platform::ownProcessId()))
      if (process.parent == platform::ownProcessId()) platform::order({process}, platform::Order::end);
  };
  EXPECT_THAT(run().message, HasSubstr("its keeper was lost"));
  EXPECT_TRUE(platform::processesBelow(platform::ownProcessId()).empty());
}

TEST_F(HostLinkTest, FloodsOfOutputAreNoStop) {
  for (const char* kind : {"line", "bars", "lines"}) {
    SCOPED_TRACE(kind);
    lines_.clear();
    EXPECT_EQ(run(std::string("come flood:") + kind + " serve").status, JobStatus::done);
    EXPECT_THAT(lines_, Contains("flooded"));
    for (const std::string& line : lines_) ASSERT_LE(line.size(), OutputLines::kLongest + 3);
  }
}

TEST_F(HostLinkTest, EachHostsOutputAndLogAreKept) {
  support::TemporaryFolder folder;
  options_.records = folder.path("hosts");
  ASSERT_EQ(run("print:first come serve").status, JobStatus::done);
  ASSERT_EQ(run("print:second log:a_line come serve:RenderTask fault:9").status, JobStatus::hostFailed);
  EXPECT_EQ(folder.read("hosts/1/output.txt"), "first\n");
  EXPECT_EQ(folder.read("hosts/2/output.txt"), "second\n");
  EXPECT_EQ(folder.read("hosts/2/corvantis.log"), "a line\n");
  ASSERT_EQ(run("print:never_came exit:3").status, JobStatus::hostFailed);
  EXPECT_EQ(folder.read("hosts/3/output.txt"), "never came\n");
  EXPECT_TRUE(warnings_.empty());
  options_.records = folder.write("file", "in the way") + "/hosts";
  EXPECT_EQ(run("come serve").status, JobStatus::done) << "a record that cannot be kept costs no frame";
  EXPECT_THAT(warnings_, testing::ElementsAre(HasSubstr("log cannot be kept in " + options_.records)));
}

TEST_F(HostLinkTest, TimeInWhichTheWorkerWasStoppedDoesNotCount) {
  EXPECT_EQ(run("print:was_suspended come print:was_suspended serve").status, JobStatus::done);
}

TEST_F(HostLinkTest, AFrameIsFinishedWithinTheGraceOfATermination) {
  const struct {
    const char* name;
    const char* orders;
    std::chrono::milliseconds grace;
    std::size_t rendered;
  } cases[] = {
      {"no grace", "come serve:RenderTask,1 say:STARTED print:asks_to_stop stall", std::chrono::seconds(0), 0},
      {"the frame ends", "come serve:RenderTask,1 say:STARTED print:asks_to_stop say:SUCCESS serve",
       std::chrono::seconds(60), 1},
      {"the grace ends", "come serve:RenderTask,1 say:STARTED print:asks_to_stop print:takes_a_minute stall",
       std::chrono::seconds(60), 0},
      {"a second request", "come serve:RenderTask,1 print:asks_to_stop print:asks_to_stop stall",
       std::chrono::seconds(60), 0},
      {"no frame is under way", "print:asks_to_stop stall", std::chrono::seconds(60), 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    options_.stop = &stop_.emplace();
    options_.grace = c.grace;
    const JobResult result = run(c.orders);
    EXPECT_EQ(result.message, HostLink::kInterrupted);
    EXPECT_EQ(stop_->asked(), platform::Stop::terminate);
    EXPECT_EQ(std::count_if(result.frames.begin(), result.frames.end(), [](const auto& f) { return f.rendered; }),
              static_cast<std::ptrdiff_t>(c.rendered));
  }
}

TEST(OutputLines, AreCleanAndBounded) {
  const struct {
    std::string bytes, lines;
  } cases[] = {
      {"a\nb\r\nc", "a|b|c"},
      {"10 %\r20 %\r100 %\n", "100 %"},
      {"\033[1;32mgreen\033[0m \033]0;title\007x\033]2;t\033\\y\033Mz", "green xyz"},
      {"a\tb\001\177c", "a bc"},
      {"caf\xc3\xa9 \xff\xc3(\xe2\x82", "caf\xc3\xa9 ?\?(?\?"},
      {"a\033[12\nnext\n", "a|next"},
      {std::string(5000, 'x') + "\n", std::string(OutputLines::kLongest - 1, 'x') + "..."},
      {"", ""},
  };
  for (const auto& c : cases) {
    std::string lines;
    OutputLines output([&](const std::string& line) { lines += (lines.empty() ? "" : "|") + line; });
    // One byte at a time, as a slow pipe gives them.
    for (const char byte : c.bytes) output.add({&byte, 1});
    output.finish();
    EXPECT_EQ(lines, c.lines);
  }
}

TEST(HostLink, TokensDiffer) {
  EXPECT_EQ(randomToken().size(), 32U);
  EXPECT_NE(randomToken(), randomToken());
}

}  // namespace
}  // namespace worker
