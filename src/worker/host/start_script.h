// What a host is given for its job: a private folder with the start-up script and, for the host's short-lived files, a
// folder of its own below it.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/process/private_folder.h"

namespace worker {

class StartScript {
 public:
  // The script hands the host to the worker at `port`, which knows it by `token`. std::runtime_error with the reason
  // when it cannot be written, or when the folder's name is one that hosts do not take.
  StartScript(std::uint16_t port, const std::string& token);

  // The host's command with the script's path in place of "{script}", or appended.
  std::vector<std::string> in(std::vector<std::string> command) const;
  // The host's folder for short-lived files: its log is there.
  std::string hostFolder() const;
  // What makes the host use its folder for short-lived files.
  std::map<std::string, std::string> environment() const;

 private:
  platform::PrivateFolder folder_;
};

}  // namespace worker
