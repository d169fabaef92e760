#include "plugin/render/multipass_setup.h"

#include <string>

#include "plugin/daemon/requests/requests.h"
#include "plugin/util/log_file.h"

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

}  // namespace

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

}  // namespace corvantis
