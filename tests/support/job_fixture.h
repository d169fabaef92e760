// A job with its host and its log, as most tests of the job and render rooms need them. The connection is not
// connected: lines for the worker appear in the log.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"
#include "support/fake_host.h"
#include "support/log_capture.h"

namespace support {

class JobFixture : public testing::Test {
 protected:
  // Fetches the host core as the start of a job does.
  void bindCore() { job.hostCore = {&host.core, &host.core, &host.core}; }

  // The text of the std::runtime_error that `work` throws; "" when it throws none.
  template <class Work>
  static std::string errorOf(Work&& work) {
    try {
      work();
    } catch (const std::runtime_error& e) {
      return e.what();
    }
    return "";
  }

  FakeHost host;
  corvantis::JobState job;
  LogCapture log;
  corvantis::win32::simple_socket connection;
};

}  // namespace support
