#include <stdexcept>
#include <string_view>

#include "hostsdk/script_value.h"
#include "plugin/daemon/requests/requests.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

constexpr std::u16string_view kPositive = u"SUCCESS: ";

// What differs between the questions besides their payload.
struct Question {
  const char16_t* scriptFunction;
  std::string negativeText;
};

Question entryQuestion(const char16_t* scriptFunction, const std::u16string& key) {
  return {scriptFunction, "Key " + to_string(key) + " doesn't exist"};
}

std::string exchange(win32::simple_socket& connection, const std::string& payload, const char16_t* scriptFunction) {
  try {
    connection.send(payload);
    return connection.receive(win32::COMMAND_TIMEOUT_MS);
  } catch (const win32::simple_socket_error& failure) {
    throw hostsdk::RuntimeError(std::u16string(u"Error in ") + scriptFunction + u": " + to_wstring(failure.what()));
  }
}

std::u16string valueOf(const std::u16string& answer, const std::string& negativeText) {
  if (!answer.starts_with(kPositive)) throw std::invalid_argument(negativeText);
  return answer.substr(kPositive.size());
}

// Told apart by the argument's type: a wide request reaches the worker whole, a narrow one in the ANSI code page.
template <class Text>
std::u16string ask(win32::simple_socket& connection, const Text& request, const Question& question) {
  pump_messages();
  const std::string answer = exchange(connection, to_utf8(request), question.scriptFunction);
  return valueOf(from_utf8(answer), question.negativeText);
}

}  // namespace

std::u16string requestJobInfoEntry(win32::simple_socket& connection, const std::u16string& key) {
  return ask(connection, "FUNCTION: GETJOBINFOENTRY " + to_string(key), entryQuestion(u"GetJobInfoEntry", key));
}

std::u16string requestSubmitInfoEntry(win32::simple_socket& connection, const std::u16string& key) {
  return ask(connection, "FUNCTION: GETSUBMITINFOENTRY " + to_string(key), entryQuestion(u"GetSubmitInfoEntry", key));
}

std::int32_t requestSubmitInfoEntryElementCount(win32::simple_socket& connection, const std::u16string& key) {
  return parse_int32(ask(connection, "FUNCTION: GETSUBMITINFOENTRYELEMENTCOUNT " + to_string(key),
                         entryQuestion(u"GetSubmitInfoEntryElementCount", key)));
}

std::u16string requestSubmitInfoEntryElement(win32::simple_socket& connection, std::int32_t index,
                                             const std::u16string& key) {
  return ask(connection, "FUNCTION: GETSUBMITINFOENTRYELEMENT " + to_string(index) + " " + to_string(key),
             entryQuestion(u"GetSubmitInfoEntryElement", key));
}

std::u16string requestAuxFilename(win32::simple_socket& connection, std::int32_t index) {
  return ask(connection, "FUNCTION: GETAUXFILE " + to_string(index),
             {u"GetAuxFilename", "Aux file requested doesn't exist"});
}

std::u16string requestPathMappedFilename(win32::simple_socket& connection, const std::u16string& path) {
  return ask(connection, u"FUNCTION: GETPATHMAPPEDFILENAME " + path,
             {u"GetPathMappedFilename", "GetPathMappedFilename did not return successfully."});
}

}  // namespace corvantis
