#include "plugin/render/jpeg_preview.h"

#include <exception>
#include <string>

#include "plugin/daemon/requests/requests.h"
#include "plugin/render/move_with_retries.h"
#include "plugin/render/output_files.h"
#include "plugin/render/output_info.h"
#include "plugin/util/files.h"
#include "plugin/util/paths.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

void createMissingFolder(const std::u16string& folder, win32::simple_socket& connection) {
  if (directory_exists(folder)) return;
  sendStdoutLine(connection, u"Creating jpeg output path: " + folder);
  make_directories(folder);
}

}  // namespace

void checkJpegFolder(JobState& job, win32::simple_socket& connection) {
  if (job.settings.jpegOutputPath.empty()) {
    sendStdoutLine(connection, u"No jpeg output path specified, disabling jpeg output");
    job.settings.useJpegOutput = false;
    return;
  }
  try {
    createMissingFolder(job.settings.jpegOutputPath, connection);
  } catch (const std::exception&) {
    sendStdoutLine(connection, u"Could not create jpeg output path, disabling jpeg output");
    job.settings.useJpegOutput = false;
  }
}

void writeJpegOutput(const JobState& job, hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info,
                     win32::simple_socket& connection) {
  const std::u16string preview =
      ensure_trailing_backslash(job.settings.jpegOutputPath) + stem_of(info.Name()) + u".jpg";
  const bool isLocal = job.settings.localRendering;
  const std::u16string written =
      isLocal ? ensure_trailing_backslash(job.settings.tempFolder) + file_name_of(preview) : preview;

  sendStdoutLine(connection, u"Writing jpeg output to: " + written);
  hostsdk::BitmapInfo jpegInfo;
  prepareOutputInfo(job, jpegInfo);
  jpegInfo.SetName(written);
  writeImageFile(bitmap, jpegInfo);
  if (isLocal) moveWithRetries(job.settings, written, preview, connection);
}

void tryWriteJpegOutput(const JobState& job, hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info,
                        win32::simple_socket& connection) {
  try {
    writeJpegOutput(job, bitmap, info, connection);
  } catch (const std::exception& error) {
    sendStdoutLine(connection, u"Failed to save jpeg output because: " + to_wstring(error.what()));
  }
}

}  // namespace corvantis
