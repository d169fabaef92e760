// What the user sees of a job: progress bars on a terminal, plain lines elsewhere, and the closing table.
#pragma once

#include <cstdio>
#include <set>
#include <string>

#include "worker/conversation/session.h"

namespace worker {

struct ConsoleOptions {
  bool terminal = false;  // bars and colours
  bool verbose = false;   // also the host's and the plug-in's log lines
  bool quiet = false;     // warnings, errors and the result line only
  int width = 80;         // columns
};

class Console : public JobObserver {
 public:
  // Writes to `out` (borrowed).
  Console(std::FILE* out, const ConsoleOptions& options);
  ~Console() override;

  void jobStarted(const Job& job, const std::string& pluginVersion) override;
  void frameStarted(std::size_t index) override;
  void frameFinished(std::size_t index, const FrameResult& result) override;
  void progress(float percent) override;
  void title(const std::string& title) override;
  void log(const std::string& line) override;
  void warning(const std::string& line) override;
  void hostLine(const std::string& line);

  // The table of frames and the errors in full.
  void report(const Job& job, const JobResult& result, double seconds);

 private:
  void line(const std::string& text);
  void drawBars();
  void clearBars();
  std::string bar(double share, int columns) const;
  std::string paint(const char* colour, const std::string& text) const;

  std::FILE* out_;
  ConsoleOptions options_;
  const Job* job_ = nullptr;
  std::size_t finished_ = 0;
  std::size_t current_ = 0;
  bool rendering_ = false;
  float percent_ = 0;
  std::string title_;
  bool drawn_ = false;
  int lastDecile_ = -1;
};

}  // namespace worker
