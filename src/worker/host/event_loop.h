// Waiting for a host: handlers run until something holds, the host's time is up, or the user asks for a stop.
//
// Time is platform::clock()'s, looked at between handlers and after every pause of `look`. A step longer than what a
// running program can miss is time in which this process was stopped, and does not count. What has arrived is looked at
// before time is believed.
#pragma once

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

#include "platform/process/stop_signals.h"

namespace worker {

class EventLoop {
 public:
  using Milliseconds = std::chrono::milliseconds;
  enum class Outcome { over, expired, stopped };

  // `stop` is borrowed; without one nothing stops the loop. A request to terminate leaves what is protected `grace`.
  EventLoop(const platform::StopSignals* stop, Milliseconds grace, Milliseconds look);
  ~EventLoop();
  EventLoop(const EventLoop&) = delete;
  EventLoop& operator=(const EventLoop&) = delete;

  boost::asio::io_context& context() { return context_; }

  // Until `over` holds. Stops are heeded unless this is itself the work of stopping.
  Outcome runUntil(const std::function<bool()>& over, Milliseconds patience, bool heedsStops = true);

  // Until `over` holds, however long: for what was cancelled and only has to be heard of.
  void settle(const std::function<bool()>& over);

  // What runs now is worth finishing once it is asked to terminate.
  void protect(bool isProtected) { isProtected_ = isProtected; }
  // A stop was asked for, and its grace, if it has any, is over.
  bool mustStop();

 private:
  void runArrived();
  Milliseconds step();

  boost::asio::io_context context_;
  boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work_{context_.get_executor()};
  const platform::StopSignals* stop_;
  std::optional<boost::asio::posix::stream_descriptor> wakeUp_;
  Milliseconds grace_;
  Milliseconds look_;
  bool isProtected_ = false;
  std::uint32_t lastTick_;
};

}  // namespace worker
