#include "plugin/render/output_files.h"

#include <cstdint>
#include <stdexcept>

#include "plugin/daemon/requests/requests.h"
#include "plugin/render/move_with_retries.h"
#include "plugin/util/files.h"
#include "plugin/util/paths.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

std::u16string inFolder(const std::u16string& folder, const std::u16string& fileName) {
  return ensure_trailing_backslash(folder) + fileName;
}

std::u16string companionIn(const std::u16string& folder, const std::u16string& name) {
  return inFolder(folder, u"A_" + file_name_of(name));
}

void checkResult(std::uint16_t result, const char* operation) {
  if (result == hostsdk::kBitmapSuccess) return;
  throw std::runtime_error(std::string("Error in bm->") + operation + "(): error code " + to_string(result));
}

void writeByWayOfTempFolder(const JobState& job, hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info,
                            const std::u16string& companion, win32::simple_socket& connection) {
  const std::u16string& name = info.Name();
  hostsdk::BitmapInfo localInfo;
  localInfo.Copy(info);
  localInfo.SetName(inFolder(job.settings.tempFolder, file_name_of(name)));
  writeImageFile(bitmap, localInfo);
  moveWithRetries(job.settings, localInfo.Name(), name, connection);

  const std::u16string localCompanion = companionIn(job.settings.tempFolder, name);
  if (file_exists(localCompanion)) moveWithRetries(job.settings, localCompanion, companion, connection);
}

}  // namespace

void createOutputPath(const hostsdk::BitmapInfo& info, win32::simple_socket& connection) {
  if (info.Name().empty()) return;
  const std::u16string folder = parent_of(info.Name());
  if (directory_exists(folder)) return;
  sendStdoutLine(connection, u"Creating output path: " + folder);
  make_directories(folder);
}

void writeImageFile(hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info) {
  checkResult(bitmap.OpenOutput(info), "OpenOutput");
  checkResult(bitmap.Write(info, hostsdk::kSingleFrame), "Write");
  bitmap.Close(info, 0);
}

void writeOutput(JobState& job, hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info,
                 win32::simple_socket& connection) {
  const std::u16string& name = info.Name();
  const std::u16string companion = companionIn(parent_of(name), name);
  if (job.settings.localRendering) {
    writeByWayOfTempFolder(job, bitmap, info, companion, connection);
  } else {
    sendStdoutLine(connection, u"Writing to output file: " + name);
    writeImageFile(bitmap, info);
  }
  job.savedOutputFiles.push_back(name);
  if (file_exists(companion)) job.savedOutputFiles.push_back(companion);
}

}  // namespace corvantis
