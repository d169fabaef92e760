// A plug-in's job and connection as at load, with a scripted worker waiting, a fake host and a clock that only moves
// when a test says so.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"
#include "support/fake_clock.h"
#include "support/fake_host.h"
#include "support/fake_script_runtime.h"
#include "support/log_capture.h"
#include "support/scripted_peer.h"

namespace support {

class WorkerFixture : public testing::Test {
 protected:
  WorkerFixture() { startAfresh(); }

  void startAfresh() {
    worker = std::make_unique<ScriptedPeer>();
    connection = std::make_unique<corvantis::win32::simple_socket>();
    job = std::make_unique<corvantis::JobState>();
    log.startAgain();
    host.calls.clear();
  }

  FakeClock clock;
  platform::ClockReplacement clockReplacement{clock};
  FakeScriptRuntime scripts;
  FakeHost host{&scripts};
  std::unique_ptr<corvantis::JobState> job = std::make_unique<corvantis::JobState>();
  LogCapture log;
  std::unique_ptr<corvantis::win32::simple_socket> connection;
  std::unique_ptr<ScriptedPeer> worker;
  bool running = false;
};

}  // namespace support
