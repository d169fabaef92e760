// Real processes that start, misbehave and end.
#include "worker/host/host_link.h"

#include <gtest/gtest.h>

#include "support/build_folders.h"
#include "worker/conversation/session.h"

namespace worker {
namespace {

std::string failureOf(const HostOptions& options) {
  Job job;
  job.scene = "/a.gltf";
  job.frames = {1};
  const std::string token = randomToken();
  JobObserver observer;
  try {
    HostLink link(options, token);
    return Session(job, token, link, observer, [] { return 0.0; }).run().message;
  } catch (const HostFailure& e) {
    return e.what();
  }
}

TEST(HostLink, TokensDiffer) {
  EXPECT_EQ(randomToken().size(), 32U);
  EXPECT_NE(randomToken(), randomToken());
}

TEST(HostLink, SaysHowTheHostWasLost) {
  const std::string misbehaving = support::testProgramFolder() + "/misbehaving_host";
  const struct {
    const char* name;
    std::vector<std::string> command;
    std::vector<const char*> named;
  } cases[] = {
      {"no such program", {"no-such-host-program"}, {"Cannot start the host", "no-such-host-program"}},
      {"not a program", {"/dev/null"}, {"Cannot start the host", "/dev/null"}},
      {"ends before it connects",
       {"/bin/sh", "-c", "echo no licence; exit 3"},
       {"ended before it could connect", "exit code 3", "it last said:\n  no licence"}},
      {"closes early", {misbehaving, "close"}, {"closed the connection early", "exit code 0"}},
      {"is someone else", {misbehaving, "token"}, {"Something other than the host connected"}},
      {"is killed", {misbehaving, "abort"}, {"closed the connection early", "ended by signal 9", "about to abort"}},
      {"exits", {misbehaving, "exit"}, {"closed the connection early", "exit code 7", "about to exit"}},
      {"sends too much", {misbehaving, "huge"}, {"at most 100000 bytes", "2147483647"}},
      {"sends nonsense", {misbehaving, "gibberish"}, {"not part of the protocol"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    HostOptions options;
    options.command = c.command;
    const std::string failure = failureOf(options);
    for (const char* named : c.named) EXPECT_NE(failure.find(named), std::string::npos) << failure;
  }
}

TEST(HostLink, AHostThatNeverConnectsIsEndedAfterTheTimeout) {
  HostOptions options;
  options.command = {"/bin/sh", "-c", "echo waiting; read forever < /dev/zero"};
  options.silence = std::chrono::milliseconds(0);
  EXPECT_NE(failureOf(options).find("did not connect within 0 seconds"), std::string::npos);
}

}  // namespace
}  // namespace worker
