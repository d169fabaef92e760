// Turns what a host writes, whatever it is, into lines that can be shown and kept: bounded in length, without escape
// sequences and other control characters. Of what a carriage return has overwritten only the last state is a line.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace worker {

class OutputLines {
 public:
  // Bytes of a line that are kept; what is longer ends in "...".
  static constexpr std::size_t kLongest = 2000;

  explicit OutputLines(std::function<void(std::string)> onLine) : onLine_(std::move(onLine)) {}

  void add(std::string_view bytes);
  // Hands over what has no line end yet.
  void finish();

 private:
  enum class State { text, escape, sequence, command, commandEscape };

  void addByte(unsigned char byte);
  void addText(unsigned char byte);
  void endLine();

  std::function<void(std::string)> onLine_;
  std::string line_;
  State state_ = State::text;
  bool cut_ = false;
  bool returned_ = false;
};

}  // namespace worker
