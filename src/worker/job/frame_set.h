// Sets of frames as users write them: "1-24,30,40-50x2".
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace worker {

// The frames of `text` in the order written, each once. A part is a frame ("30"), a range ("1-24", also downwards:
// "24-1") or a range with a step ("40-50x2"); frames may be negative ("-5--1"). std::invalid_argument names the part
// that cannot be read. At most 1000000 frames.
std::vector<std::int32_t> parseFrameSet(const std::string& text);

}  // namespace worker
