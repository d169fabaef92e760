// The conversation of one job, apart from sockets and processes.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "worker/conversation/connection.h"
#include "worker/conversation/protocol.h"
#include "worker/job/job.h"

namespace worker {

// Told what happens, as it happens. Overrides what it cares for.
class JobObserver {
 public:
  virtual ~JobObserver() = default;
  virtual void jobStarted(const Job&, const std::string& /*pluginVersion*/) {}
  virtual void frameStarted(std::size_t /*index*/) {}  // position in Job::frames
  virtual void frameFinished(std::size_t /*index*/, const FrameResult&) {}
  virtual void progress(float /*percent*/) {}  // of the frame; -1 when it cannot be measured
  virtual void title(const std::string&) {}
  virtual void log(const std::string& /*line*/) {}  // from the plug-in or a script
  virtual void warning(const std::string&) {}
};

class Session {
 public:
  // All are borrowed. `now` gives seconds from any fixed moment.
  Session(const Job& job, Connection& connection, JobObserver& observer, std::function<double()> now);

  // Runs the job from the handshake to the end of the job. Never throws for what the host does: a lost host is a
  // result.
  JobResult run();

 private:
  class Refused;

  void handshake();
  void sendSettings(bool beforeStart);
  void startJob();
  void renderFrame(std::size_t index);
  void endJob();
  void runScripts(const std::vector<std::string>& scripts, bool setFrame, std::int32_t frame);

  // The next reply; whatever comes before it (log lines, progress, questions) is dealt with.
  Message nextReply();
  void handle(const Message& message);
  void noteOutputLine(const std::string& line);
  void send(std::string_view word, const std::vector<std::string>& parameters = {});
  void send(const std::vector<std::string>& fields);

  const Job& job_;
  Connection& connection_;
  JobObserver& observer_;
  std::function<double()> now_;
  JobResult result_;
  FrameResult* current_ = nullptr;
};

}  // namespace worker
