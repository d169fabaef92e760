#include "worker/job/frame_set.h"

#include <fmt/format.h>

#include <charconv>
#include <sstream>
#include <stdexcept>
#include <unordered_set>

namespace worker {
namespace {

constexpr std::int64_t kMostFrames = 1000000;

struct Range {
  std::int32_t first = 0, last = 0, step = 1;
};

[[noreturn]] void refuse(const std::string& part, const std::string& why) {
  throw std::invalid_argument(
      fmt::format("frames: expected frames such as 1-24,30,40-50x2, got \"{}\": {}", part, why));
}

// Reads a number at `position` and moves it past the digits.
std::int32_t readNumber(const std::string& part, const char*& position) {
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(position, part.data() + part.size(), number);
  if (error == std::errc::result_out_of_range) refuse(part, "a frame number is out of range");
  if (error != std::errc()) refuse(part, "a frame number is missing");
  position = end;
  return number;
}

Range readRange(const std::string& part) {
  Range range;
  const char* position = part.data();
  const char* const end = part.data() + part.size();
  range.first = range.last = readNumber(part, position);
  if (position != end && *position == '-') {
    ++position;
    range.last = readNumber(part, position);
    if (position != end && *position == 'x') {
      ++position;
      range.step = readNumber(part, position);
      if (range.step < 1) refuse(part, "the step must be 1 or more");
    }
  }
  if (position != end) refuse(part, fmt::format("\"{}\" is not understood", position));
  return range;
}

}  // namespace

std::vector<std::int32_t> parseFrameSet(const std::string& text) {
  std::vector<std::int32_t> frames;
  std::unordered_set<std::int32_t> seen;
  std::istringstream parts(text);
  std::string part;
  while (std::getline(parts, part, ',')) {
    const Range range = readRange(part);
    const std::int64_t step = range.last < range.first ? -std::int64_t{range.step} : range.step;
    const std::int64_t count = (std::int64_t{range.last} - range.first) / step + 1;
    if (count + static_cast<std::int64_t>(frames.size()) > kMostFrames)
      refuse(part, "that is more than 1000000 frames");
    for (std::int64_t i = 0; i < count; ++i) {
      const auto frame = static_cast<std::int32_t>(range.first + i * step);
      if (seen.insert(frame).second) frames.push_back(frame);
    }
  }
  if (frames.empty() || text.back() == ',') refuse(text, "a frame number is missing");
  return frames;
}

}  // namespace worker
