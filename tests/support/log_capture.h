// The log file of a test: what the code under test wrote to it, line by line.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "plugin/util/log_file.h"
#include "support/temporary_folder.h"

namespace support {

// Sends log_file to a file of its own from construction to destruction. Make it after the JobState, which opens the
// log where the environment says.
class LogCapture {
 public:
  LogCapture() { startAgain(); }
  ~LogCapture() { corvantis::log_file.close(); }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  std::vector<std::string> lines() const {
    std::istringstream text(folder_.readText("corvantis.log"));
    std::vector<std::string> found;
    for (std::string line; std::getline(text, line);) found.push_back(line);
    return found;
  }

  // Lines that went to the worker too, as far as the connection was not there to take them: the ones that a note of
  // the failed send follows.
  std::vector<std::string> unsentLines() const {
    const std::vector<std::string> all = lines();
    std::vector<std::string> found;
    for (std::size_t i = 0; i + 1 < all.size(); ++i) {
      if (all[i + 1].rfind("  failed to send this message to Tessaryn because: ", 0) == 0) found.push_back(all[i]);
    }
    return found;
  }

  // Forgets what was written so far.
  void startAgain() {
    corvantis::log_file.close();
    corvantis::log_file.open(folder_.wide("corvantis.log"));
  }

 private:
  TemporaryFolder folder_;
};

}  // namespace support
