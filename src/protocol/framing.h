// How a message travels: its payload's length as a big-endian unsigned 32-bit number, then the payload, over TCP.
#pragma once

#include <cstdint>

namespace protocol {

inline constexpr std::uint32_t kHeaderSize = 4;
// The largest payload that the plug-in accepts. What it sends is as long at most with its header.
inline constexpr std::uint32_t kLargestMessage = 100000;

// The worker listens here, at a port of its choice.
inline constexpr const char* kWorkerAddress = "127.0.0.1";
// How long the plug-in waits for an answer.
inline constexpr std::int32_t kAnswerTimeoutMs = 120000;

}  // namespace protocol
