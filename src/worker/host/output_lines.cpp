#include "worker/host/output_lines.h"

#include <utility>

namespace worker {
namespace {

constexpr unsigned char kBell = 7;
constexpr unsigned char kEscape = 27;
constexpr unsigned char kDelete = 127;

bool isContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

// Bytes of the UTF-8 sequence that begins with `byte`; 0 for a byte that begins none.
std::size_t sequenceLength(unsigned char byte) {
  if (byte < 0x80) return 1;
  if (byte >= 0xC2 && byte < 0xE0) return 2;
  if (byte >= 0xE0 && byte < 0xF0) return 3;
  return byte >= 0xF0 && byte < 0xF5 ? 4 : 0;
}

// The text with "?" for each byte that belongs to no whole sequence.
std::string valid(std::string text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = sequenceLength(static_cast<unsigned char>(text[at]));
    std::size_t seen = length == 0 ? 0 : 1;
    while (seen > 0 && seen < length && at + seen < text.size() &&
           isContinuation(static_cast<unsigned char>(text[at + seen])))
      ++seen;
    if (seen == 0 || seen < length) {
      text[at] = '?';
      seen = 1;
    }
    at += seen;
  }
  return text;
}

}  // namespace

void OutputLines::add(std::string_view bytes) {
  for (const char byte : bytes) addByte(static_cast<unsigned char>(byte));
}

void OutputLines::finish() {
  if (!line_.empty()) endLine();
}

// Sequences are ESC [ ... letter and ESC ] ... BEL (or ESC \); any other ESC takes one character with it. A line end
// always is one, so that a broken sequence costs its line at most.
void OutputLines::addByte(unsigned char byte) {
  if (byte == '\n') return endLine();
  switch (state_) {
    case State::text:
      if (byte == kEscape)
        state_ = State::escape;
      else
        addText(byte);
      return;
    case State::escape:
      state_ = byte == '[' ? State::sequence : byte == ']' ? State::command : State::text;
      return;
    case State::sequence:
      if (byte >= '@' && byte <= '~') state_ = State::text;
      return;
    case State::command:
      if (byte == kBell) state_ = State::text;
      if (byte == kEscape) state_ = State::commandEscape;
      return;
    case State::commandEscape:
      state_ = State::text;
      return;
  }
}

void OutputLines::addText(unsigned char byte) {
  if (byte == '\r') {
    returned_ = true;
    return;
  }
  if (byte == '\t') byte = ' ';
  if (byte < ' ' || byte == kDelete) return;
  if (std::exchange(returned_, false)) {
    line_.clear();
    cut_ = false;
  }
  if (line_.size() < kLongest)
    line_ += static_cast<char>(byte);
  else
    cut_ = true;
}

void OutputLines::endLine() {
  if (cut_) {
    while (!line_.empty() && isContinuation(static_cast<unsigned char>(line_.back()))) line_.pop_back();
    if (!line_.empty()) line_.pop_back();
    line_ += "...";
  }
  state_ = State::text;
  cut_ = returned_ = false;
  onLine_(valid(std::exchange(line_, {})));
}

}  // namespace worker
