// A daemon run against a scripted worker.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "plugin/daemon/run_daemon.h"
#include "support/worker_fixture.h"

namespace corvantis {

class DaemonTest : public support::WorkerFixture {
 protected:
  // What a job started on the fake host leaves behind.
  void openJob() {
    job->hostCore = {&host.core, &host.core, &host.core};
    job->jobRunning = true;
    job->renderViewport = &host.core.viewports.front();
  }

  // Runs the conversation that `worker` states.
  bool run(const std::u16string& token = u"token") {
    worker->start();
    const bool result = RunCorvantisDaemon(*job, *connection, running, worker->port(), token);
    worker->finish();
    EXPECT_FALSE(running);
    return result;
  }

  // The worker shakes hands, sends one line, gets these replies and closes.
  bool runLine(const std::string& line, const std::vector<std::string>& replies) {
    worker->handshake("token").send(line);
    for (const std::string& reply : replies) worker->expect(reply);
    worker->close();
    return run();
  }

  // The same for several lines, each with its one reply.
  void runLines(const std::vector<std::pair<std::string, std::string>>& lines) {
    worker->handshake("token");
    for (const auto& [line, reply] : lines) worker->send(line).expect(reply);
    worker->close();
    EXPECT_TRUE(run());
  }

  // What the one command wrote to the log: what follows its fields and their empty line.
  std::vector<std::string> logOfCommand() const {
    std::vector<std::string> lines = log.lines();
    std::erase(lines, "Returning TRUE");
    const auto lastEmpty = std::find(lines.rbegin(), lines.rend(), "");
    return {lastEmpty.base(), lines.end()};
  }
};

}  // namespace corvantis
