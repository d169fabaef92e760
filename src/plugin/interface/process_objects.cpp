// The objects that live as long as the library is loaded, in the order in which they are made; they go in the reverse
// order. The log stream, the fourth of them, is there before every other initialiser runs and closed after them all.
#include "plugin/interface/corvantis_interface.h"
#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"
#include "plugin/util/log_file.h"

namespace corvantis {
namespace {

struct LogCloser {
  ~LogCloser() { log_file.close(); }
};

const LogCloser closesLogLast;
bool daemonRunning = false;
JobState jobState;                // opens the log
win32::simple_socket farmSocket;  // starts the socket library; the only one that may fail to be made
CorvantisInterface tessarynUtil(jobState, farmSocket, daemonRunning);

}  // namespace
}  // namespace corvantis
