// Which clock and which file layer are in force.
#include <atomic>

#include "platform/system_layers.h"

namespace platform {
namespace {

// Null: the system's own.
constinit std::atomic<Clock*> clockInForce{nullptr};
constinit std::atomic<Files*> filesInForce{nullptr};

}  // namespace

Clock& clock() {
  Clock* const replacement = clockInForce.load(std::memory_order_acquire);
  return replacement != nullptr ? *replacement : systemClock();
}

ClockReplacement::ClockReplacement(Clock& replacement) : previous_(clockInForce.exchange(&replacement)) {}

ClockReplacement::~ClockReplacement() { clockInForce.store(previous_); }

Files& files() {
  Files* const replacement = filesInForce.load(std::memory_order_acquire);
  return replacement != nullptr ? *replacement : systemFiles();
}

FilesReplacement::FilesReplacement(Files& replacement) : previous_(filesInForce.exchange(&replacement)) {}

FilesReplacement::~FilesReplacement() { filesInForce.store(previous_); }

}  // namespace platform
