// The members of TessarynUtil that run a job without a worker.
#include <exception>

#include "plugin/interface/corvantis_interface.h"
#include "plugin/interface/mxs/listener.h"
#include "plugin/job/end_job.h"
#include "plugin/job/start_job.h"
#include "plugin/render/render_frame.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

bool reportFailure(const std::u16string& kind, const std::string& text) {
  mxs::printToListener(kind + to_wstring(text) + u"\n");
  log_file << text << LogFile::endl;
  return false;
}

// Runs a trapped call that gives whether it succeeded; reports a fault or a standard exception.
template <class TrappedCall>
bool runReported(TrappedCall&& trappedCall) {
  std::string sehText;
  bool succeeded = false;
  try {
    succeeded = trappedCall(sehText);
  } catch (const std::exception& error) {
    return reportFailure(u"Exception: ", error.what());
  }
  return sehText.empty() ? succeeded : reportFailure(u"SEH Exception: ", sehText);
}

}  // namespace

bool CorvantisInterface::Debug_StartJob(const std::u16string& fileName, const std::u16string& cameraName) {
  return runReported([&](std::string& sehText) {
    trappedStartJob(jobState_, fileName, cameraName, sehText);
    return true;
  });
}

bool CorvantisInterface::Debug_EndJob() {
  return runReported([&](std::string& sehText) {
    trappedEndJob(jobState_, sehText);
    return true;
  });
}

bool CorvantisInterface::Debug_RenderFrame(std::int32_t frameIndex) {
  return runReported([&](std::string& sehText) {
    win32::simple_socket unconnected;
    constexpr std::uint16_t rendered = 0;
    return trappedRenderFrame(jobState_, frameIndex, unconnected, sehText) == rendered;
  });
}

}  // namespace corvantis
