#include "worker/host/event_loop.h"

#include <algorithm>
#include <utility>

#include "platform/clock.h"

namespace worker {
namespace {

using Milliseconds = EventLoop::Milliseconds;

// What a program that is not stopped may miss on a machine that is busy.
constexpr Milliseconds kLongestStep{5000};

// Handlers between two looks at the clock and at the signals: each handle that is ready has had its turn by then, and
// one that always is cannot keep the loop.
constexpr int kHandlersAtOnce = 100;

}  // namespace

EventLoop::EventLoop(const platform::StopSignals* stop, Milliseconds grace, Milliseconds look)
    : stop_(stop), grace_(grace), look_(look), lastTick_(platform::clock().tickCount()) {
  if (!stop_) return;
  wakeUp_.emplace(context_, stop_->handle());
  wakeUp_->async_wait(boost::asio::posix::stream_descriptor::wait_read, [](const boost::system::error_code&) {});
}

EventLoop::~EventLoop() {
  if (wakeUp_) wakeUp_->release();  // the signals' own
}

EventLoop::Outcome EventLoop::runUntil(const std::function<bool()>& over, Milliseconds patience, bool heedsStops) {
  step();
  for (Milliseconds left = patience;;) {
    runArrived();
    if (over()) return Outcome::over;
    if (heedsStops && mustStop()) return Outcome::stopped;
    if (left <= Milliseconds::zero()) return Outcome::expired;
    context_.run_one_for(std::min(look_, left));
    const Milliseconds passed = step();
    left -= passed;
    if (isProtected_ && stop_ && stop_->asked() != platform::Stop::none) grace_ -= passed;
  }
}

void EventLoop::settle(const std::function<bool()>& over) {
  while (!over()) context_.run_one();
}

bool EventLoop::mustStop() {
  if (!stop_ || stop_->asked() == platform::Stop::none) return false;
  const bool waits = stop_->asked() == platform::Stop::terminate && !stop_->insists() && isProtected_;
  return !waits || grace_ <= Milliseconds::zero();
}

void EventLoop::runArrived() {
  for (int i = 0; i < kHandlersAtOnce && context_.poll_one() > 0; ++i) {
  }
}

Milliseconds EventLoop::step() {
  const std::uint32_t tick = platform::clock().tickCount();
  return std::min(Milliseconds(tick - std::exchange(lastTick_, tick)), kLongestStep);
}

}  // namespace worker
