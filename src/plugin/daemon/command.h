// What a row of the command table is made of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// One command line being carried out.
struct CommandCall {
  JobState& jobState;
  win32::simple_socket& socket;
  std::u16string_view word;
  std::span<const std::u16string> parameters;  // without the word
};

using CommandStep = void (*)(const CommandCall& call);

// How many parameters a command takes, and what becomes of a line with another number of them.
struct CountRule {
  enum class Kind {
    notExamined,   // the handler sees whatever came
    exactly,       // others: an error reply, nothing runs
    atLeast,       // fewer: an error reply, nothing runs
    exactlyOrOff,  // others: a log line, and the row's turnOff runs instead of the handler
  };
  Kind kind = Kind::notExamined;
  std::size_t count = 0;
};

struct CommandRow {
  std::u16string_view word;
  CountRule parameters;
  CommandStep run;
  CommandStep begin = nullptr;    // runs before the parameters are counted
  CommandStep turnOff = nullptr;  // see exactlyOrOff
};

// Counts the parameters by the row's rule and runs the row's steps accordingly.
void runCommand(const CommandRow& row, const CommandCall& call);

// A whole parameter as a number; nullopt when it is none.
std::optional<std::int32_t> integerIn(const std::u16string& parameter);
std::optional<float> floatIn(const std::u16string& parameter);

}  // namespace corvantis
