// Host diagnostics: standard error.
#pragma once

#include <string>
#include <utility>

#include "hostsdk/services.h"

namespace hostkit::services {

class SystemLog : public hostsdk::LogSys {
 public:
  // `program` begins the host's own lines.
  explicit SystemLog(std::string program) : program_(std::move(program)) {}

  // There are no dialogs: an entry that asks for one is printed all the same.
  void LogEntry(Level level, bool showDialog, const std::u16string& title, const std::u16string& text) override;

  // One line from the host itself.
  void line(const std::string& text);

 private:
  std::string program_;
};

}  // namespace hostkit::services
