#include "plugin/render/renderer_setup.h"

#include <stdexcept>
#include <string>

#include "plugin/daemon/requests/requests.h"
#include "plugin/job/trapped_call.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

// A camera of renderer A whose effect sits in a child node.
constexpr hostsdk::Class_ID kHolderCameraClass{0x399ee5f2, 0x584a71a8};
// An effect that renders its passes itself; only renderer C wants to be driven through it.
constexpr hostsdk::Class_ID kSinglePassEffectClass{0x6cc9546e, 0x0b1961b9};

// Takes the effect of `camera` when it is enabled and allowed; tells whether it did.
bool takeEffect(JobState& job, hostsdk::CameraObject& camera, hostsdk::TimeValue time) {
  if (job.settings.disableMultipass) return false;
  hostsdk::Interval unused;
  if (!camera.MultiPassEffectEnabled(time, unused)) return false;
  job.multipassEffect = camera.MultiPassEffect();
  return job.multipassEffect != nullptr;
}

hostsdk::INode* lastChildNamed(hostsdk::INode& parent, const std::u16string& name) {
  hostsdk::INode* found = nullptr;
  for (int i = 0; i < parent.NumberOfChildren(); ++i) {
    hostsdk::INode* child = parent.ChildNode(i);
    if (child && child->Name() == name) found = child;
  }
  return found;
}

void takeHolderEffect(JobState& job, hostsdk::TimeValue time, win32::simple_socket& connection) {
  job.multipassHolderNode = lastChildNamed(*job.renderCamera, u"Multipass");
  if (!job.multipassHolderNode) return;
  sendStdoutLine(connection, u"Multipass plugin holder camera node " + job.multipassHolderNode->Name());
  hostsdk::Object* object = job.multipassHolderNode->EvalWorldState(time, true).obj;
  job.multipassHolderCamera = object ? object->AsCamera() : nullptr;
  if (!job.multipassHolderCamera) {
    log_file << "  it is not a camera, so its multipass effect is not used" << LogFile::endl;
    job.multipassHolderNode = nullptr;
    return;
  }
  job.multipassEnabled = takeEffect(job, *job.multipassHolderCamera, time);
  if (job.multipassEnabled) job.passCount = job.multipassEffect->TotalPasses(time);
}

void takeCameraEffect(JobState& job, hostsdk::TimeValue time) {
  job.multipassEnabled = takeEffect(job, *job.renderCameraObject, time);
  if (!job.multipassEnabled) return;
  if (job.multipassEffect->ClassID() == kSinglePassEffectClass) {
    job.multipassEnabled = job.isRendererC;
  } else {
    job.passCount = job.multipassEffect->TotalPasses(time);
  }
}

// No effect, one pass.
void clearMultipass(JobState& job) {
  job.multipassEnabled = false;
  job.passCount = 1;
  job.multipassEffect = nullptr;
  job.multipassHolderNode = nullptr;
}

void findMultipassEffect(JobState& job, hostsdk::TimeValue time, win32::simple_socket& connection) {
  if (job.isRendererA && job.renderCameraObject->ClassID() == kHolderCameraClass) {
    takeHolderEffect(job, time, connection);
  } else {
    takeCameraEffect(job, time);
  }
}

// The host's OpenCurRenderer at the scene's render size. One of `camera` and `view` is null.
Trapped<int> openCurRenderer(JobState& job, hostsdk::INode* camera, hostsdk::ViewExp* view,
                             win32::simple_socket& connection) {
  sendStdoutLine(connection, u"Opening renderer");
  hostsdk::Interface8& core = *job.hostCore.v8;
  const int width = core.RenderWidth();
  const int height = core.RenderHeight();
  return trappedCall(job, "Trapped SEH Exception in OpenCurRenderer(): ", 0,
                     [&] { return core.OpenCurRenderer(camera, view, job.settings.regionType, width, height); });
}

Trapped<int> openForView(JobState& job, win32::simple_socket& connection) {
  sendStdoutLine(connection, job.renderViewLocked
                                 ? u"Rendering LOCKED viewport at index " + to_wstring(job.lockedViewportIndex)
                                 : std::u16string(u"Rendering viewport"));
  log_file << "Rendering view at address " << static_cast<const void*>(job.renderViewport) << LogFile::endl;
  return openCurRenderer(job, nullptr, job.renderViewport, connection);
}

void evaluateRenderCamera(JobState& job, hostsdk::TimeValue time) {
  hostsdk::Object* object = job.renderCamera->EvalWorldState(time, true).obj;
  job.renderCameraObject = object ? object->AsCamera() : nullptr;
  if (job.renderCameraObject) return;
  throw std::runtime_error("Camera node " + to_string(job.renderCamera->Name()) +
                           " is not a camera node - check that there are not other nodes or groups in the scene that "
                           "have the same name as the camera");
}

Trapped<int> openForCamera(JobState& job, std::int32_t frame, win32::simple_socket& connection) {
  sendStdoutLine(connection, u"Rendering camera node " + job.renderCamera->Name());
  const int ticks = hostsdk::GetTicksPerFrame();
  const hostsdk::TimeValue time = frameTime(frame, ticks);
  sendStdoutLine(connection, u"Checking multipass info for frame " + to_wstring(time / ticks));
  evaluateRenderCamera(job, time);
  findMultipassEffect(job, time, connection);
  return openCurRenderer(job, job.renderCamera, nullptr, connection);
}

}  // namespace

void setupRenderer(JobState& job, std::int32_t frame, win32::simple_socket& connection) {
  if (job.rendererOpen) return;
  sendStdoutLine(connection, u"Setting up render parameters");
  job.hostCore.v8->SetupRendParams(job.renderParams, nullptr, job.settings.regionType);
  clearMultipass(job);
  const Trapped<int> opened = job.renderCamera ? openForCamera(job, frame, connection) : openForView(job, connection);
  throwIfFaulted(job, opened);
  if (opened.value == 0) throw std::runtime_error("Failed to open the max renderer.");
  sendStdoutLine(connection, job.multipassEnabled ? u"Multipass enabled" : u"Multipass disabled");
  sendStdoutLine(connection, u"Rendering " + to_wstring(job.passCount) + u" passes");
  job.rendererOpen = true;
}

hostsdk::TimeValue frameTime(std::int32_t frame, int ticksPerFrame) {
  return static_cast<hostsdk::TimeValue>(static_cast<std::int64_t>(frame) * ticksPerFrame);
}

}  // namespace corvantis
