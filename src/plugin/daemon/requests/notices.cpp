#include "platform/environment.h"
#include "plugin/daemon/requests/requests.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

void sendLoggedLine(win32::simple_socket& connection, const char16_t* request, const std::u16string& text) {
  log_file << text << LogFile::endl;
  const std::string payload = to_utf8(request + text);
  try {
    connection.send(payload);
  } catch (const win32::simple_socket_error& failure) {
    log_file << "  failed to send this message to Tessaryn because: " << failure.what() << LogFile::endl;
  }
}

void sendOrDrop(win32::simple_socket& connection, const std::string& payload) {
  try {
    connection.send(payload);
  } catch (const win32::simple_socket_error&) {  // NOLINT(bugprone-empty-catch): nobody is to learn of it
  }
}

}  // namespace

void pump_messages() { platform::pumpMessages(); }

void sendStdoutLine(win32::simple_socket& connection, const std::u16string& text) {
  sendLoggedLine(connection, u"FUNCTION: STDOUT: MaxCorvantis: ", text);
}

void sendWarnLine(win32::simple_socket& connection, const std::u16string& text) {
  sendLoggedLine(connection, u"FUNCTION: WARN: MaxCorvantis: ", text);
}

void relayStdoutLine(win32::simple_socket& connection, const std::u16string& text) {
  sendOrDrop(connection, to_utf8(u"FUNCTION: STDOUT: " + text));
}

void relayWarnLine(win32::simple_socket& connection, const std::u16string& text) {
  sendOrDrop(connection, to_utf8(u"FUNCTION: WARN: " + text));
}

void sendTitle(win32::simple_socket& connection, const std::u16string& title) {
  pump_messages();
  sendOrDrop(connection, to_utf8(u"FUNCTION: SETTITLE " + title));
}

bool sendProgress(win32::simple_socket& connection, float percent) {
  pump_messages();
  sendOrDrop(connection, to_utf8("FUNCTION: PROGRESS " + to_string(percent)));
  return true;
}

}  // namespace corvantis
