// Scene time of a frame.
#pragma once

#include <cstdint>

#include "hostsdk/types.h"

namespace corvantis {

// In ticks. A frame too far out for the host's 32-bit time wraps around.
inline hostsdk::TimeValue frameTime(std::int32_t frame, int ticksPerFrame) {
  return static_cast<hostsdk::TimeValue>(static_cast<std::int64_t>(frame) * ticksPerFrame);
}

}  // namespace corvantis
