#include "plugin/daemon/run_daemon.h"

#include <limits>
#include <new>
#include <stdexcept>

#include "hostsdk/exceptions.h"
#include "hostsdk/script_value.h"
#include "platform/clock.h"
#include "platform/environment.h"
#include "plugin/daemon/build_version.h"
#include "plugin/daemon/dispatch.h"
#include "plugin/daemon/reply.h"
#include "plugin/daemon/requests/requests.h"
#include "plugin/interface/mxs/evaluate.h"
#include "plugin/interface/mxs/listener.h"
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
void connectToWorker(win32::simple_socket& socket, std::int32_t portNumber) {
  const bool isPort = portNumber >= 0 && portNumber <= std::numeric_limits<std::uint16_t>::max();
  if (!isPort && !socket.isConnected())
    throw win32::simple_socket_could_not_connect_error("connect: Failed to connect to server at port " +
                                                       to_string(portNumber));
  socket.connect("127.0.0.1", static_cast<std::uint16_t>(portNumber), kTcpStream);
}

void shakeHands(win32::simple_socket& socket, const std::u16string& token) {
  socket.send(to_utf8(token));
  const std::u16string word = from_utf8(socket.receive(win32::COMMAND_TIMEOUT_MS));
  const std::string identification = "Corvantis " + buildVersionString();
  if (word == u"TessarynStartup") return sendReply(socket, identification);
  sendReply(socket, identification + "   Incompatible plugin versions detected, exiting.");
  throw std::runtime_error("Incorrect handshake with Tessaryn plugin.");
}

void serveCommand(JobState& jobState, win32::simple_socket& socket) {
  const std::u16string line = from_utf8(socket.receive(win32::COMMAND_TIMEOUT_MS));
  log_file << "\nGot command: " << line << LogFile::endl << LogFile::endl;
  dispatchCommand(jobState, socket, line);
}

void runDaemon(JobState& jobState, win32::simple_socket& socket, std::int32_t portNumber, const std::u16string& token) {
  connectToWorker(socket, portNumber);
  shakeHands(socket, token);
  while (socket.isConnected()) {
    try {
      serveCommand(jobState, socket);
    } catch (const win32::simple_socket_timeout_error&) {
      pump_messages();
    } catch (const win32::simple_socket_disconnect_error&) {
      continue;  // the socket has closed itself, which ends the loop
    }
  }
}

Trapped<bool> runDaemonTrapped(JobState& jobState, win32::simple_socket& socket, std::int32_t portNumber,
                               const std::u16string& token) {
  return trappedCall(jobState, "SEH Exception trapped in 3ds max: ", false, [&] {
    runDaemon(jobState, socket, portNumber, token);
    log_file << "Returning TRUE" << LogFile::endl;
    return true;
  });
}

void report(win32::simple_socket& socket, const std::string& logLine, const std::string& reply) {
  log_file << logLine << LogFile::endl;
  if (socket.isConnected()) sendReply(socket, reply);
  platform::clock().sleep(kPauseAfterReportMs);
}

// Reports the exception being handled.
void reportException(win32::simple_socket& socket) {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    report(socket, "Exception: std::bad_alloc",
           "ERROR: Exception caught in 3ds max: Out of memory.  There was not enough memory available to fulfill a "
           "memory request.");
  } catch (const std::exception& error) {
    report(socket, std::string("Exception: ") + error.what(),
           std::string("ERROR: Exception caught in 3ds max: ") + error.what());
  } catch (const hostsdk::MAXException& error) {
    const std::string text = to_string(error.message());
    report(socket, "MAXException: " + text, "ERROR: MAXException caught in 3ds max: " + text);
  } catch (const hostsdk::MAXScriptException& error) {
    const std::string text = to_string(mxs::printedText(error));
    report(socket, "Maxscript exception caught: " + text, "ERROR: Maxscript exception:" + text);
  } catch (...) {
    report(socket, "Unknown exception caught", "ERROR: Unknown exception caught. (3ds max may have crashed)");
  }
}

bool refuseSecondRun() {
  const std::u16string text = u"RunCorvantisDaemon() was executed while the daemon is already running.";
  log_file << text << LogFile::endl;
  mxs::printToListener(text);
  return false;
}

}  // namespace

bool RunCorvantisDaemon(JobState& jobState, win32::simple_socket& socket, bool& daemonRunning, std::int32_t portNumber,
                        const std::u16string& token) {
  log_file << "Thread: " << std::uint64_t{platform::currentThreadId()} << LogFile::endl;
  if (daemonRunning) return refuseSecondRun();
  const RunningFlag running(daemonRunning);
  log_file << "running daemon..." << LogFile::endl;
  Trapped<bool> outcome;
  try {
    outcome = runDaemonTrapped(jobState, socket, portNumber, token);
  } catch (...) {
    reportException(socket);
  }
  if (outcome.faulted())
    report(socket, "SEH exception caught", "ERROR: SEH exception: " + faultText(jobState, outcome));
  return outcome.value;
}

}  // namespace corvantis
