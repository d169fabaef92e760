// The state of the render job: its settings, and what the start of the job, the renderer set-up and each frame leave
// behind. The plug-in has one; it lives as long as the library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hostsdk/bitmap.h"
#include "hostsdk/core_interface.h"
#include "plugin/job/settings.h"
#include "plugin/util/log_file.h"

namespace corvantis {

// The host core interface, fetched afresh by every start of a job. Null before the first.
struct HostCore {
  hostsdk::Interface8* v8 = nullptr;
  hostsdk::Interface11* v11 = nullptr;
  hostsdk::Interface14* v14 = nullptr;
};
inline HostCore fetchHostCore() {
  return {hostsdk::GetCOREInterface8(), hostsdk::GetCOREInterface11(), hostsdk::GetCOREInterface14()};
}

// A render element that a frame has given a name and a bitmap of its own.
struct FrameElement {
  hostsdk::ElementOutput* output;
  std::u16string sceneName;  // what to set back
};

class JobState {
 public:
  // Gives every field its value at load and opens the log file.
  JobState() { openLogFile(log_file); }
  JobState(const JobState&) = delete;
  JobState& operator=(const JobState&) = delete;

  JobSettings settings;

  // Set by commands, read by scripts.
  std::int32_t currentFrame = 0;
  std::int32_t currentTask = 0;
  std::u16string sceneFileName;
  std::u16string sceneFilePath;

  // Set by the start of a job.
  HostCore hostCore;
  bool jobRunning = false;
  hostsdk::ViewExp* renderViewport = nullptr;
  bool renderViewLocked = false;
  std::int32_t lockedViewportIndex = -1;
  hostsdk::INode* renderCamera = nullptr;  // null: the viewport's own view
  bool isRendererA = false, isRendererB = false, isRendererC = false;

  // Set when the renderer is opened.
  bool rendererOpen = false;
  hostsdk::RendParams renderParams;
  hostsdk::CameraObject* renderCameraObject = nullptr;
  hostsdk::INode* multipassHolderNode = nullptr;
  hostsdk::CameraObject* multipassHolderCamera = nullptr;
  hostsdk::IMultiPassCameraEffect* multipassEffect = nullptr;
  bool multipassEnabled = false;
  std::int32_t passCount = 1;

  // The frame's outputs. The three element lists are parallel.
  hostsdk::BitmapInfo outputInfo;
  std::u16string outputBaseName;
  std::vector<std::u16string> savedOutputFiles;
  std::vector<hostsdk::IRenderElement*> renderElements;
  std::vector<hostsdk::ElementOutput*> elementOutputs;
  std::vector<hostsdk::Bitmap*> elementAccumulators;
  std::int32_t renderElementCount = 0;

  // What the frame under way holds (job/frame_hold.h); between frames only what a fault abandoned.
  std::vector<hostsdk::Bitmap*> frameBitmaps;
  std::vector<FrameElement> frameElements;
  bool frameAbandoned = false;

  // Description of the last exception that a trapped call saw.
  std::string crashDescription = "No message";
};

}  // namespace corvantis
