// One command of the worker: what a row of the command table is made of, and what the steps of a row work with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"
#include "protocol/words.h"

namespace corvantis {

struct CommandRow;

// One command line being carried out.
struct CommandCall {
  JobState& job;
  win32::simple_socket& connection;
  const CommandRow& row;
  std::span<const std::u16string> parameters;  // without the word
};

using CommandStep = void (*)(const CommandCall& call);

// How many parameters a command takes, and what becomes of a line with another number of them.
struct CountRule {
  enum class Kind {
    notExamined,   // the handler sees whatever came
    exactly,       // others: an error reply, nothing runs
    atLeast,       // fewer: an error reply, nothing runs
    exactlyOrOff,  // others: a log line, and turnOff runs instead of the handler
  };
  Kind kind = Kind::notExamined;
  std::size_t count = 0;
  CommandStep turnOff = nullptr;
};

// Which group of settings a command sets.
enum class SettingGroup { none, oneJob, opening, lasting };

struct CommandRow {
  std::string_view word;
  CountRule parameters;
  CommandStep run;
  CommandStep begin = nullptr;         // runs before the parameters are counted
  const char* announcement = nullptr;  // logged before the parameters are counted
  const char* note = nullptr;          // logged before the value that was set
  const char16_t* meaning = nullptr;   // of the value, in an error's text
  SettingGroup group = SettingGroup::none;
};

// Replies: one message each, a word of the protocol and a text after it. Narrow text is in the ANSI code page. They
// throw the socket's errors and those of to_utf8.
void sendReply(win32::simple_socket& connection, std::string_view word);
void sendReply(win32::simple_socket& connection, std::string_view word, const std::u16string& text);
void sendReply(win32::simple_socket& connection, std::string_view word, const std::string& text);
// "ERROR: " + the command's word + ": " + text.
void replyError(const CommandCall& call, const std::u16string& text);

// Some of the error texts have a blank before the comma.
enum class BeforeComma { nothing, blank };
// Parameter 1, "<it>", is not <what>. Counted from 0 by `index`, from 1 in the text.
std::u16string invalidParameter(const CommandCall& call, std::size_t index, const std::u16string& what,
                                BeforeComma gap = BeforeComma::nothing);

// A whole parameter as a number; nullopt when it is none.
std::optional<std::int32_t> integerIn(const std::u16string& parameter);
std::optional<float> floatIn(const std::u16string& parameter);

}  // namespace corvantis
