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

bool CorvantisInterface::Debug_StartJob(const std::u16string& fileName, const std::u16string& cameraName) {
  return runReported([&] { return trappedStartJob(jobState_, fileName, cameraName); });
}

bool CorvantisInterface::Debug_EndJob() {
  return runReported([&] { return trappedEndJob(jobState_); });
}

bool CorvantisInterface::Debug_RenderFrame(std::int32_t frameIndex) {
  return runReported([&] {
    win32::simple_socket unconnected;
    return trappedRenderFrame(jobState_, frameIndex, unconnected);
  });
}

}  // namespace corvantis
