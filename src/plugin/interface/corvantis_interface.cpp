// The members of TessarynUtil that talk to the worker.
#include <stdexcept>

#include "hostsdk/script_runtime.h"
#include "plugin/daemon/requests/requests.h"
#include "plugin/daemon/run_daemon.h"
#include "plugin/interface/corvantis_interface.h"
#include "plugin/interface/mxs/listener.h"

namespace corvantis {
namespace {

// The value of a request as a script string; undefined when the worker says no.
template <class Request>
hostsdk::Value* valueOf(Request&& request) {
  try {
    return hostsdk::scriptRuntime().newString(request());
  } catch (const std::invalid_argument&) {
    return hostsdk::scriptRuntime().undefined();
  }
}

// The same as far as a worker is there.
template <class Request>
hostsdk::Value* valueWithDaemon(bool daemonRunning, Request&& request) {
  if (!daemonRunning) return hostsdk::scriptRuntime().undefined();
  pump_messages();
  return valueOf(request);
}

}  // namespace

void CorvantisInterface::LogMessage(const std::u16string& message) {
  if (!daemonRunning_) return mxs::printToListener(message + u"\n");
  pump_messages();
  relayStdoutLine(farmSocket_, message);
}

void CorvantisInterface::WarnMessage(const std::u16string& message) {
  if (!daemonRunning_) return mxs::printToListener(message + u"\n");
  pump_messages();
  relayWarnLine(farmSocket_, message);
}

void CorvantisInterface::SetTitle(const std::u16string& title) {
  if (!daemonRunning_) return mxs::printToListener(u"Title was set to \"" + title + u"\"\n");
  pump_messages();
  sendTitle(farmSocket_, title);
}

bool CorvantisInterface::SetProgress(float percent) {
  if (!daemonRunning_) return true;
  pump_messages();
  return sendProgress(farmSocket_, percent);
}

hostsdk::Value* CorvantisInterface::GetJobInfoEntry(const std::u16string& key) {
  return valueWithDaemon(daemonRunning_, [&] { return requestJobInfoEntry(farmSocket_, key); });
}

hostsdk::Value* CorvantisInterface::GetSubmitInfoEntry(const std::u16string& key) {
  return valueWithDaemon(daemonRunning_, [&] { return requestSubmitInfoEntry(farmSocket_, key); });
}

std::int32_t CorvantisInterface::GetSubmitInfoEntryElementCount(const std::u16string& key) {
  if (!daemonRunning_) return 0;
  pump_messages();
  try {
    return requestSubmitInfoEntryElementCount(farmSocket_, key);
  } catch (const std::invalid_argument&) {
    return 0;
  }
}

hostsdk::Value* CorvantisInterface::GetSubmitInfoEntryElement(std::int32_t index, const std::u16string& key) {
  return valueWithDaemon(daemonRunning_, [&] { return requestSubmitInfoEntryElement(farmSocket_, index, key); });
}

hostsdk::Value* CorvantisInterface::GetAuxFilename(std::int32_t index) {
  return valueWithDaemon(daemonRunning_, [&] { return requestAuxFilename(farmSocket_, index); });
}

hostsdk::Value* CorvantisInterface::GetPathMappedFilename(const std::u16string& inputFilename) {
  pump_messages();
  return valueOf([&] { return requestPathMappedFilename(farmSocket_, inputFilename); });
}

bool CorvantisInterface::RunCorvantisDaemon(std::int32_t portNumber, const std::u16string& token) {
  return corvantis::RunCorvantisDaemon(jobState_, farmSocket_, daemonRunning_, portNumber, token);
}

}  // namespace corvantis
