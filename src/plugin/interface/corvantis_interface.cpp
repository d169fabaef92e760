#include "plugin/interface/corvantis_interface.h"

#include <exception>
#include <stdexcept>

#include "hostsdk/core_interface.h"
#include "hostsdk/script_runtime.h"
#include "plugin/daemon/requests/requests.h"
#include "plugin/daemon/run_daemon.h"
#include "plugin/interface/mxs/evaluate.h"
#include "plugin/job/end_job.h"
#include "plugin/job/start_job.h"
#include "plugin/render/render_frame.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

constexpr hostsdk::Interface_ID kInterfaceId{0x83928748, 0xA38F941E};

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

bool reportFailure(const std::u16string& kind, const std::string& text) {
  mxs::printToListener(kind + to_wstring(text) + u"\n");
  log_file << text << LogFile::endl;
  return false;
}

// Whether a trapped call came through; reports a fault or a standard exception.
template <class TrappedCall>
bool runReported(TrappedCall&& trappedCall) {
  std::string sehText;
  try {
    sehText = trappedCall().sehText;
  } catch (const std::exception& error) {
    return reportFailure(u"Exception: ", error.what());
  }
  return sehText.empty() || reportFailure(u"SEH Exception: ", sehText);
}

}  // namespace

// What is published. Ids follow the order of registration.
CorvantisInterface::CorvantisInterface(JobState& job, win32::simple_socket& connection, bool& daemonRunning)
    : job_(job), connection_(connection), daemonRunning_(daemonRunning) {
  using This = CorvantisInterface;
  max3d::fpwrapper::FFCreateDescriptor table(*this, kInterfaceId, u"TessarynUtil");
  table.addFunction(&This::Debug_StartJob, u"Debug_StartJob", {u"fileName", u"cameraName"});
  table.addFunction(&This::Debug_EndJob, u"Debug_EndJob");
  table.addFunction(&This::Debug_RenderFrame, u"Debug_RenderFrame", {u"frameIndex"});
  table.addFunction(&This::SetTitle, u"SetTitle", {u"title"});
  table.addFunction(&This::SetProgress, u"SetProgress", {u"percent"});
  table.addFunction(&This::FailRender, u"FailRender", {u"message"});
  table.addFunction(&This::GetSubmitInfoEntry, u"GetSubmitInfoEntry", {u"key"});
  table.addFunction(&This::GetSubmitInfoEntryElementCount, u"GetSubmitInfoEntryElementCount", {u"key"});
  table.addFunction(&This::GetSubmitInfoEntryElement, u"GetSubmitInfoEntryElement", {u"index", u"key"});
  table.addFunction(&This::GetJobInfoEntry, u"GetJobInfoEntry", {u"key"});
  table.addFunction(&This::GetAuxFilename, u"GetAuxFilename", {u"index"});
  table.addFunction(&This::GetOutputFilename, u"GetOutputFilename", {u"index"});
  table.addFunction(&This::GetPathMappedFilename, u"GetPathMappedFilename", {u"inputFilename"});
  table.addReadOnlyProperty(&This::CurrentFrame, u"CurrentFrame");
  table.addReadOnlyProperty(&This::CurrentTask, u"CurrentTask");
  table.addReadOnlyProperty(&This::SceneFileName, u"SceneFileName");
  table.addReadOnlyProperty(&This::SceneFilePath, u"SceneFilePath");
  table.addReadOnlyProperty(&This::JobsDataFolder, u"JobsDataFolder");
  table.addReadOnlyProperty(&This::PluginsFolder, u"PluginsFolder");
  table.addFunction(&This::LogMessage, u"LogMessage", {u"message"});
  table.addFunction(&This::WarnMessage, u"WarnMessage", {u"message"});
  table.addFunction(&This::RunCorvantisDaemon, u"RunCorvantisDaemon", {u"portNumber", u"token"});
  table.finish();
}

// The worker.

void CorvantisInterface::LogMessage(const std::u16string& message) {
  if (!daemonRunning_) return mxs::printToListener(message + u"\n");
  pump_messages();
  relayStdoutLine(connection_, message);
}

void CorvantisInterface::WarnMessage(const std::u16string& message) {
  if (!daemonRunning_) return mxs::printToListener(message + u"\n");
  pump_messages();
  relayWarnLine(connection_, message);
}

void CorvantisInterface::SetTitle(const std::u16string& title) {
  if (!daemonRunning_) return mxs::printToListener(u"Title was set to \"" + title + u"\"\n");
  pump_messages();
  sendTitle(connection_, title);
}

bool CorvantisInterface::SetProgress(float percent) {
  if (!daemonRunning_) return true;
  pump_messages();
  return sendProgress(connection_, percent);
}

hostsdk::Value* CorvantisInterface::GetJobInfoEntry(const std::u16string& key) {
  return valueWithDaemon(daemonRunning_, [&] { return requestJobInfoEntry(connection_, key); });
}

hostsdk::Value* CorvantisInterface::GetSubmitInfoEntry(const std::u16string& key) {
  return valueWithDaemon(daemonRunning_, [&] { return requestSubmitInfoEntry(connection_, key); });
}

std::int32_t CorvantisInterface::GetSubmitInfoEntryElementCount(const std::u16string& key) {
  if (!daemonRunning_) return 0;
  pump_messages();
  try {
    return requestSubmitInfoEntryElementCount(connection_, key);
  } catch (const std::invalid_argument&) {
    return 0;
  }
}

hostsdk::Value* CorvantisInterface::GetSubmitInfoEntryElement(std::int32_t index, const std::u16string& key) {
  return valueWithDaemon(daemonRunning_, [&] { return requestSubmitInfoEntryElement(connection_, index, key); });
}

hostsdk::Value* CorvantisInterface::GetAuxFilename(std::int32_t index) {
  return valueWithDaemon(daemonRunning_, [&] { return requestAuxFilename(connection_, index); });
}

hostsdk::Value* CorvantisInterface::GetPathMappedFilename(const std::u16string& inputFilename) {
  pump_messages();
  return valueOf([&] { return requestPathMappedFilename(connection_, inputFilename); });
}

bool CorvantisInterface::RunCorvantisDaemon(std::int32_t portNumber, const std::u16string& token) {
  return corvantis::RunCorvantisDaemon(job_, connection_, daemonRunning_, portNumber, token);
}

// The job.

void CorvantisInterface::FailRender(const std::u16string& message) {
  pump_messages();
  throw hostsdk::RuntimeError(message);
}

hostsdk::Value* CorvantisInterface::GetOutputFilename(std::int32_t index) {
  const std::vector<std::u16string>& files = job_.savedOutputFiles;
  if (index < 0 || static_cast<std::size_t>(index) >= files.size()) return hostsdk::scriptRuntime().undefined();
  return hostsdk::scriptRuntime().newString(files[static_cast<std::size_t>(index)]);
}

std::int32_t CorvantisInterface::CurrentFrame() {
  if (!daemonRunning_) return hostsdk::GetCOREInterface8()->GetTime() / hostsdk::GetTicksPerFrame();
  pump_messages();
  return job_.currentFrame;
}

std::int32_t CorvantisInterface::CurrentTask() {
  if (!daemonRunning_) return -1;
  pump_messages();
  return job_.currentTask;
}

hostsdk::Value* CorvantisInterface::textProperty(const std::u16string& text) {
  if (!daemonRunning_) return hostsdk::scriptRuntime().undefined();
  pump_messages();
  return hostsdk::scriptRuntime().newString(text);
}

hostsdk::Value* CorvantisInterface::SceneFileName() { return textProperty(job_.sceneFileName); }
hostsdk::Value* CorvantisInterface::SceneFilePath() { return textProperty(job_.sceneFilePath); }
hostsdk::Value* CorvantisInterface::JobsDataFolder() { return textProperty(job_.settings.jobsDataFolder); }
hostsdk::Value* CorvantisInterface::PluginsFolder() { return textProperty(job_.settings.pluginsFolder); }

// A job without a worker.

bool CorvantisInterface::Debug_StartJob(const std::u16string& fileName, const std::u16string& cameraName) {
  return runReported([&] { return trappedStartJob(job_, fileName, cameraName); });
}

bool CorvantisInterface::Debug_EndJob() {
  return runReported([&] { return trappedEndJob(job_); });
}

bool CorvantisInterface::Debug_RenderFrame(std::int32_t frameIndex) {
  return runReported([&] {
    win32::simple_socket unconnected;
    return trappedRenderFrame(job_, frameIndex, unconnected);
  });
}

}  // namespace corvantis
