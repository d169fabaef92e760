#include "plugin/daemon/requests/requests.h"

#include <stdexcept>
#include <string_view>

#include "hostsdk/script_value.h"
#include "platform/environment.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

namespace notice = protocol::notice;
namespace question = protocol::question;

// "FUNCTION: " + word + text.
void sendNotice(win32::simple_socket& connection, std::string_view word, const std::string& text) {
  connection.send(std::string(protocol::kFunction).append(word).append(text));
}

void sendOwnLine(win32::simple_socket& connection, std::string_view word, const std::u16string& text) {
  log_file << text << LogFile::endl;
  const std::string line = std::string(notice::kOwn) + to_utf8(text);
  try {
    sendNotice(connection, word, line);
  } catch (const win32::simple_socket_error& failure) {
    log_file << "  failed to send this message to Tessaryn because: " << failure.what() << LogFile::endl;
  }
}

template <class Send>
void dropFailure(Send&& send) {
  try {
    send();
  } catch (const win32::simple_socket_error&) {  // NOLINT(bugprone-empty-catch): nobody is to learn of it
  }
}

// What differs between the questions besides their argument.
struct Question {
  std::string_view word;
  const char16_t* scriptFunction;
  std::string negativeText;
};

Question entryQuestion(std::string_view word, const char16_t* scriptFunction, const std::u16string& key) {
  return {word, scriptFunction, "Key " + to_string(key) + " doesn't exist"};
}

std::string exchange(win32::simple_socket& connection, const Question& question, const std::string& argument) {
  try {
    connection.send(std::string(protocol::kFunction).append(question.word).append(" ").append(argument));
    return connection.receive(win32::COMMAND_TIMEOUT_MS);
  } catch (const win32::simple_socket_error& failure) {
    throw hostsdk::RuntimeError(std::u16string(u"Error in ") + question.scriptFunction + u": " +
                                to_wstring(failure.what()));
  }
}

std::u16string valueOf(const std::u16string& answer, const Question& question) {
  const std::u16string positive = to_wstring(std::string(protocol::kSuccessWith));
  if (!answer.starts_with(positive)) throw std::invalid_argument(question.negativeText);
  return answer.substr(positive.size());
}

// Told apart by the argument's type: a wide one reaches the worker whole, a narrow one in the ANSI code page.
template <class Text>
std::u16string ask(win32::simple_socket& connection, const Question& question, const Text& argument) {
  pump_messages();
  return valueOf(from_utf8(exchange(connection, question, to_utf8(argument))), question);
}

}  // namespace

void pump_messages() { platform::pumpMessages(); }

void sendStdoutLine(win32::simple_socket& connection, const std::u16string& text) {
  sendOwnLine(connection, notice::kStdout, text);
}

void sendStdoutLine(win32::simple_socket& connection, std::string_view beginning, const std::u16string& rest) {
  sendStdoutLine(connection, to_wstring(std::string(beginning)) + rest);
}

void sendWarnLine(win32::simple_socket& connection, const std::u16string& text) {
  sendOwnLine(connection, notice::kWarn, text);
}

void relayStdoutLine(win32::simple_socket& connection, const std::u16string& text) {
  dropFailure([&] { sendNotice(connection, notice::kStdout, to_utf8(text)); });
}

void relayWarnLine(win32::simple_socket& connection, const std::u16string& text) {
  dropFailure([&] { sendNotice(connection, notice::kWarn, to_utf8(text)); });
}

void postTitle(win32::simple_socket& connection, const std::u16string& title) {
  sendNotice(connection, notice::kSetTitle, to_utf8(title));
}

void postProgress(win32::simple_socket& connection, float percent) {
  sendNotice(connection, notice::kProgress, to_string(percent));
}

void sendTitle(win32::simple_socket& connection, const std::u16string& title) {
  pump_messages();
  dropFailure([&] { postTitle(connection, title); });
}

bool sendProgress(win32::simple_socket& connection, float percent) {
  pump_messages();
  dropFailure([&] { postProgress(connection, percent); });
  return true;
}

std::u16string requestJobInfoEntry(win32::simple_socket& connection, const std::u16string& key) {
  return ask(connection, entryQuestion(question::kJobInfoEntry, u"GetJobInfoEntry", key), to_string(key));
}

std::u16string requestSubmitInfoEntry(win32::simple_socket& connection, const std::u16string& key) {
  return ask(connection, entryQuestion(question::kSubmitInfoEntry, u"GetSubmitInfoEntry", key), to_string(key));
}

std::int32_t requestSubmitInfoEntryElementCount(win32::simple_socket& connection, const std::u16string& key) {
  const Question count = entryQuestion(question::kSubmitInfoEntryElementCount, u"GetSubmitInfoEntryElementCount", key);
  return parse_int32(ask(connection, count, to_string(key)));
}

std::u16string requestSubmitInfoEntryElement(win32::simple_socket& connection, std::int32_t index,
                                             const std::u16string& key) {
  return ask(connection, entryQuestion(question::kSubmitInfoEntryElement, u"GetSubmitInfoEntryElement", key),
             to_string(index) + " " + to_string(key));
}

std::u16string requestAuxFilename(win32::simple_socket& connection, std::int32_t index) {
  return ask(connection, {question::kAuxFile, u"GetAuxFilename", "Aux file requested doesn't exist"}, to_string(index));
}

std::u16string requestPathMappedFilename(win32::simple_socket& connection, const std::u16string& path) {
  return ask(
      connection,
      {question::kPathMappedFilename, u"GetPathMappedFilename", "GetPathMappedFilename did not return successfully."},
      path);
}

}  // namespace corvantis
