#include "plugin/render/renderer_setup.h"

#include <stdexcept>

#include "plugin/daemon/requests/requests.h"
#include "plugin/job/trapped_call.h"
#include "plugin/render/frame_time.h"
#include "plugin/render/multipass_setup.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

struct OpenResult {
  int opened = 0;
  std::string sehText;
};

OpenResult openForView(JobState& job, win32::simple_socket& connection) {
  sendStdoutLine(connection, job.renderViewLocked
                                 ? u"Rendering LOCKED viewport at index " + to_wstring(job.lockedViewportIndex)
                                 : std::u16string(u"Rendering viewport"));
  log_file << "Rendering view at address " << static_cast<const void*>(job.renderViewport) << LogFile::endl;
  sendStdoutLine(connection, u"Opening renderer");
  OpenResult result;
  result.opened = trappedOpenCurRenderer(job, nullptr, job.renderViewport, result.sehText);
  return result;
}

void evaluateRenderCamera(JobState& job, hostsdk::TimeValue time) {
  hostsdk::Object* object = job.renderCamera->EvalWorldState(time, true).obj;
  job.renderCameraObject = object ? object->AsCamera() : nullptr;
  if (job.renderCameraObject) return;
  throw std::runtime_error("Camera node " + to_string(job.renderCamera->Name()) +
                           " is not a camera node - check that there are not other nodes or groups in the scene that "
                           "have the same name as the camera");
}

OpenResult openForCamera(JobState& job, std::int32_t frame, win32::simple_socket& connection) {
  sendStdoutLine(connection, u"Rendering camera node " + job.renderCamera->Name());
  const int ticks = hostsdk::GetTicksPerFrame();
  const hostsdk::TimeValue time = frameTime(frame, ticks);
  sendStdoutLine(connection, u"Checking multipass info for frame " + to_wstring(time / ticks));
  evaluateRenderCamera(job, time);
  findMultipassEffect(job, time, connection);
  sendStdoutLine(connection, u"Opening renderer");
  OpenResult result;
  result.opened = trappedOpenCurRenderer(job, job.renderCamera, nullptr, result.sehText);
  return result;
}

void checkOpened(const JobState& job, const OpenResult& result) {
  if (!result.sehText.empty()) throw std::runtime_error(result.sehText + "\n" + job.crashDescription);
  if (result.opened == 0) throw std::runtime_error("Failed to open the max renderer.");
}

}  // namespace

void setupRenderer(JobState& job, std::int32_t frame, win32::simple_socket& connection) {
  if (job.rendererOpen) return;
  sendStdoutLine(connection, u"Setting up render parameters");
  job.hostCore.v8->SetupRendParams(job.renderParams, nullptr, job.settings.regionType);
  clearMultipass(job);
  checkOpened(job, job.renderCamera ? openForCamera(job, frame, connection) : openForView(job, connection));
  sendStdoutLine(connection, job.multipassEnabled ? u"Multipass enabled" : u"Multipass disabled");
  sendStdoutLine(connection, u"Rendering " + to_wstring(job.passCount) + u" passes");
  job.rendererOpen = true;
}

int trappedOpenCurRenderer(JobState& job, hostsdk::INode* camera, hostsdk::ViewExp* view, std::string& sehText) {
  hostsdk::Interface8& core = *job.hostCore.v8;
  const int width = core.RenderWidth();
  const int height = core.RenderHeight();
  return trappedCall(job, "Trapped SEH Exception in OpenCurRenderer(): ", sehText, 0,
                     [&] { return core.OpenCurRenderer(camera, view, job.settings.regionType, width, height); });
}

}  // namespace corvantis
