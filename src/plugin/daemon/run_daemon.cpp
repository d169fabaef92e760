#include "plugin/daemon/run_daemon.h"

#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

#include "hostsdk/exceptions.h"
#include "hostsdk/script_value.h"
#include "platform/clock.h"
#include "platform/environment.h"
#include "plugin/daemon/command.h"
#include "plugin/daemon/dispatch.h"
#include "plugin/daemon/requests/requests.h"
#include "plugin/interface/mxs/evaluate.h"
#include "plugin/job/trapped_call.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

constexpr int kTcpStream = 1;
constexpr std::uint32_t kPauseAfterReportMs = 150;

class RunningFlag {
 public:
  explicit RunningFlag(bool& flag) : flag_(flag) { flag_ = true; }
  ~RunningFlag() { flag_ = false; }
  RunningFlag(const RunningFlag&) = delete;
  RunningFlag& operator=(const RunningFlag&) = delete;

 private:
  bool& flag_;
};

// A number that is no port is a port that nobody listens on; a socket that is connected already says so first.
void connectToWorker(win32::simple_socket& connection, std::int32_t portNumber) {
  const bool isPort = portNumber >= 0 && portNumber <= std::numeric_limits<std::uint16_t>::max();
  if (!isPort && !connection.isConnected())
    throw win32::simple_socket_could_not_connect_error("connect: Failed to connect to server at port " +
                                                       to_string(portNumber));
  connection.connect(protocol::kWorkerAddress, static_cast<std::uint16_t>(portNumber), kTcpStream);
}

void shakeHands(win32::simple_socket& connection, const std::u16string& token) {
  connection.send(to_utf8(token));
  const std::u16string word = from_utf8(connection.receive(win32::COMMAND_TIMEOUT_MS));
  const std::string version = buildVersionString();
  if (word == to_wstring(std::string(protocol::kStartup)))
    return sendReply(connection, protocol::kIdentification, version);
  sendReply(connection, protocol::kIdentification, version + "   Incompatible plugin versions detected, exiting.");
  throw std::runtime_error("Incorrect handshake with Tessaryn plugin.");
}

void serveCommand(JobState& job, win32::simple_socket& connection) {
  const std::u16string line = from_utf8(connection.receive(win32::COMMAND_TIMEOUT_MS));
  log_file << "\nGot command: " << line << LogFile::endl << LogFile::endl;
  dispatchCommand(job, connection, line);
}

void runDaemon(JobState& job, win32::simple_socket& connection, std::int32_t portNumber, const std::u16string& token) {
  connectToWorker(connection, portNumber);
  shakeHands(connection, token);
  while (connection.isConnected()) {
    try {
      serveCommand(job, connection);
    } catch (const win32::simple_socket_timeout_error&) {
      pump_messages();
    } catch (const win32::simple_socket_disconnect_error&) {
      continue;  // the socket has closed itself, which ends the loop
    }
  }
}

Trapped<bool> runDaemonTrapped(JobState& job, win32::simple_socket& connection, std::int32_t portNumber,
                               const std::u16string& token) {
  return trappedCall(job, "SEH Exception trapped in 3ds max: ", false, [&] {
    runDaemon(job, connection, portNumber, token);
    log_file << "Returning TRUE" << LogFile::endl;
    return true;
  });
}

void report(win32::simple_socket& connection, const std::string& logLine, const std::string& reply) {
  log_file << logLine << LogFile::endl;
  if (connection.isConnected()) sendReply(connection, protocol::kError, reply);
  platform::clock().sleep(kPauseAfterReportMs);
}

// Reports the exception being handled.
void reportException(win32::simple_socket& connection) {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    report(connection, "Exception: std::bad_alloc",
           "Exception caught in 3ds max: Out of memory.  There was not enough memory available to fulfill a "
           "memory request.");
  } catch (const std::exception& error) {
    report(connection, std::string("Exception: ") + error.what(),
           std::string("Exception caught in 3ds max: ") + error.what());
  } catch (const hostsdk::MAXException& error) {
    const std::string text = to_string(error.message());
    report(connection, "MAXException: " + text, "MAXException caught in 3ds max: " + text);
  } catch (const hostsdk::MAXScriptException& error) {
    const std::string text = to_string(mxs::printedText(error));
    report(connection, "Maxscript exception caught: " + text, "Maxscript exception:" + text);
  } catch (...) {
    report(connection, "Unknown exception caught", "Unknown exception caught. (3ds max may have crashed)");
  }
}

bool refuseSecondRun() {
  const std::u16string text = u"RunCorvantisDaemon() was executed while the daemon is already running.";
  log_file << text << LogFile::endl;
  mxs::printToListener(text);
  return false;
}

}  // namespace

bool RunCorvantisDaemon(JobState& job, win32::simple_socket& connection, bool& daemonRunning, std::int32_t portNumber,
                        const std::u16string& token) {
  log_file << "Thread: " << std::uint64_t{platform::currentThreadId()} << LogFile::endl;
  if (daemonRunning) return refuseSecondRun();
  const RunningFlag running(daemonRunning);
  log_file << "running daemon..." << LogFile::endl;
  Trapped<bool> outcome;
  try {
    outcome = runDaemonTrapped(job, connection, portNumber, token);
  } catch (...) {
    reportException(connection);
  }
  const bool value = outcome.value;
  if (outcome.faulted())
    report(connection, "SEH exception caught", "SEH exception: " + faultText(job, std::move(outcome)));
  return value;
}

}  // namespace corvantis
