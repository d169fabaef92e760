// The table of what TessarynUtil publishes. Ids follow the order of registration.
#include "plugin/interface/corvantis_interface.h"

namespace corvantis {
namespace {
constexpr hostsdk::Interface_ID kInterfaceId{0x83928748, 0xA38F941E};
}

CorvantisInterface::CorvantisInterface(JobState& jobState, win32::simple_socket& farmSocket, bool& daemonRunning)
    : jobState_(jobState), farmSocket_(farmSocket), daemonRunning_(daemonRunning) {
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

}  // namespace corvantis
