// The library as the host sees it: what it asks for by name, and the objects that live as long as it is loaded.
#include <cstdint>

#include "hostsdk/api.h"
#include "hostsdk/types.h"
#include "plugin/interface/corvantis_interface.h"
#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"
#include "plugin/util/log_file.h"

HOSTSDK_ENTRY_POINT const char16_t* LibDescription() { return u"Corvantis, Cloud interface"; }
HOSTSDK_ENTRY_POINT std::uint32_t LibVersion() { return hostsdk::kHostVersion; }
HOSTSDK_ENTRY_POINT void LibInit() {}

namespace corvantis {
namespace {

// In the order in which they are made; they go in the reverse order. The log stream, the fourth of them, is there
// before every other initialiser runs and closed after them all.
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
