// What scripts in the host see of the plug-in: the global TessarynUtil, 16 functions and 6 read-only properties.
#pragma once

#include <cstdint>
#include <string>

#include "hostsdk/script_value.h"
#include "plugin/interface/fpwrapper/static_interface.h"
#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// Members are called by scripts on the host's main thread, under their own names. Most have two faces: with a daemon
// run under way they talk to its worker (and drain the thread's message queue first), without one they print to the
// listener or give a value that says so.
//
// Script values that members return live in the calling script's allocation frame. Requests that fail on the
// connection throw hostsdk::RuntimeError; a request that the worker answers in the negative gives undefined, or 0.
class CorvantisInterface : public max3d::fpwrapper::FFStaticInterface<CorvantisInterface, 4> {
 public:
  // Registers itself with the host. The arguments are borrowed and must outlive the object.
  CorvantisInterface(JobState& job, win32::simple_socket& connection, bool& daemonRunning);

  // A job without a worker, for debugging. True on success; false after the reason has gone to listener and log.
  bool Debug_StartJob(const std::u16string& fileName, const std::u16string& cameraName);
  bool Debug_EndJob();
  bool Debug_RenderFrame(std::int32_t frameIndex);

  void SetTitle(const std::u16string& title);
  bool SetProgress(float percent);  // always true
  void LogMessage(const std::u16string& message);
  void WarnMessage(const std::u16string& message);
  // Throws hostsdk::RuntimeError with the message.
  void FailRender(const std::u16string& message);

  hostsdk::Value* GetSubmitInfoEntry(const std::u16string& key);
  std::int32_t GetSubmitInfoEntryElementCount(const std::u16string& key);
  hostsdk::Value* GetSubmitInfoEntryElement(std::int32_t index, const std::u16string& key);
  hostsdk::Value* GetJobInfoEntry(const std::u16string& key);
  hostsdk::Value* GetAuxFilename(std::int32_t index);
  // Tried without a daemon run too, and then fails on the connection.
  hostsdk::Value* GetPathMappedFilename(const std::u16string& inputFilename);
  // The index-th of the files written for the current frame, from 0; undefined when there is none.
  hostsdk::Value* GetOutputFilename(std::int32_t index);

  // Properties. Without a daemon run: the frame under the time slider, -1, and undefined for the texts.
  std::int32_t CurrentFrame();
  std::int32_t CurrentTask();
  hostsdk::Value* SceneFileName();
  hostsdk::Value* SceneFilePath();
  hostsdk::Value* JobsDataFolder();
  hostsdk::Value* PluginsFolder();

  // The whole conversation with the worker: see run_daemon.h.
  bool RunCorvantisDaemon(std::int32_t portNumber, const std::u16string& token);

 private:
  hostsdk::Value* textProperty(const std::u16string& text);

  JobState& job_;
  win32::simple_socket& connection_;
  bool& daemonRunning_;
};

}  // namespace corvantis
