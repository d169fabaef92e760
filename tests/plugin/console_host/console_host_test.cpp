// A whole conversation with the plug-in in a process of its own. CORVANTIS_CONSOLE_HOST names another build's program,
// with what runs it before it ("run-under-wine console-host.exe"), and CORVANTIS_CONSOLE_PLUGIN its library.
#include <gmock/gmock.h>

#include <boost/algorithm/string.hpp>
#include <boost/process.hpp>
#include <cstdlib>
#include <iterator>
#include <string>
#include <vector>

#include "support/build_folders.h"
#include "support/environment.h"
#include "support/scripted_peer.h"
#include "support/temporary_folder.h"

namespace {

namespace process = boost::process;
using support::ScriptedPeer;
using namespace testing;

const std::string kToken = "a-token";

std::string given(const char* variable, const std::string& otherwise) {
  const char* const value = std::getenv(variable);
  return value != nullptr ? value : otherwise;
}

struct Ended {
  int exitCode = -1;
  std::string output;
};

class ConsoleHost : public testing::Test {
 protected:
  // Runs the host against the peer until both are done.
  Ended converse(const std::vector<std::string>& options = {}) {
    std::vector<std::string> words;
    boost::split(words, given("CORVANTIS_CONSOLE_HOST", support::programFolder() + "/console-host"),
                 boost::is_any_of(" "));
    words.push_back(given("CORVANTIS_CONSOLE_PLUGIN", support::programFolder() + "/libcorvantis.so"));
    words.insert(words.end(), {std::to_string(peer.port()), kToken});
    words.insert(words.end(), options.begin(), options.end());
    peer.start();
    process::ipstream output;
    process::child host(process::exe = words.front(),
                        process::args = std::vector<std::string>(words.begin() + 1, words.end()),
                        process::std_in<process::null, process::std_out> output);
    Ended ended;
    ended.output = {std::istreambuf_iterator<char>(output), {}};
    std::erase(ended.output, '\r');  // of Windows' line ends
    host.wait();
    ended.exitCode = host.exit_code();
    peer.finish();
    return ended;
  }

  ScriptedPeer peer;
  const support::TemporaryFolder folder;
  const support::Environment log{"TMP", folder.path()};
};

TEST_F(ConsoleHost, LoadsThePlugInAndRunsAJob) {
  const std::string scene = folder.write("scene.max", "a scene");
  peer.handshake(kToken).send("StartJob," + scene + ",").skipUntil("SUCCESS Scene loaded successfully");
  peer.send("EndJob").skipUntil("SUCCESS").close();
  const Ended ended = converse();
  EXPECT_THAT(ended.output, AllOf(HasSubstr("LibDescription: Corvantis, Cloud interface\n"),
                                  HasSubstr("LibVersion: 55F03700\n"), HasSubstr("RunCorvantisDaemon: ")));
  // Wine gives its programs a TMP of its own.
  if (std::getenv("CORVANTIS_CONSOLE_HOST") == nullptr) {
    EXPECT_TRUE(folder.exists("corvantis.log"));
  }
}

TEST_F(ConsoleHost, DescribesAMachineFaultAndGoesOn) {
  const std::string scene = folder.write("scene.max", "a scene");
  peer.handshake(kToken)
      .send("StartJob," + scene + ",")
      .expectThat(AllOf(StartsWith("ERROR: Trapped SEH Exception in LoadFromFile(): Access Violation\nProcess:  "),
                        HasSubstr("console-host"), HasSubstr("\nException Code:  C0000005\nWrite Address:  00000000\n"),
                        HasSubstr("\nCall Stack:\n"), HasSubstr("  Exception Offset")))
      .expect("SUCCESS Scene loaded successfully")
      .send("WhatIsThisWord")
      .expect("ERROR: Unexpected command \"WhatIsThisWord\" received.")
      .close();
  converse({"--fault", "LoadFromFile"});
}

}  // namespace
