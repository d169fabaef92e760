#include "plugin/render/output_files.h"

#include <cstdint>
#include <exception>
#include <stdexcept>

#include "platform/clock.h"
#include "platform/files.h"
#include "plugin/daemon/requests/requests.h"
#include "plugin/render/output_image.h"
#include "plugin/util/files.h"
#include "plugin/util/paths.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

void createMissingFolder(const std::u16string& folder, const char16_t* line, win32::simple_socket& connection) {
  if (directory_exists(folder)) return;
  sendStdoutLine(connection, line + folder);
  make_directories(folder);
}

std::u16string inFolder(const std::u16string& folder, const std::u16string& fileName) {
  return ensure_trailing_backslash(folder) + fileName;
}

std::u16string companionIn(const std::u16string& folder, const std::u16string& name) {
  return inFolder(folder, u"A_" + file_name_of(name));
}

// The file that is written for one that is to be called `name`.
std::u16string writtenName(const JobSettings& settings, const std::u16string& name) {
  return settings.localRendering ? inFolder(settings.tempFolder, file_name_of(name)) : name;
}

void checkResult(std::uint16_t result, const char* operation) {
  if (result == hostsdk::kBitmapSuccess) return;
  throw std::runtime_error(std::string("Error in bm->") + operation + "(): error code " + to_string(result));
}

void writeImage(const JobSettings& settings, hostsdk::Bitmap& bitmap, hostsdk::BitmapInfo info,
                win32::simple_socket& connection) {
  const std::u16string name = info.Name();
  info.SetName(writtenName(settings, name));
  checkResult(bitmap.OpenOutput(info), "OpenOutput");
  checkResult(bitmap.Write(info, hostsdk::kSingleFrame), "Write");
  bitmap.Close(info, 0);
  if (settings.localRendering) moveWithRetries(settings, info.Name(), name, connection);
}

void writeJpegOutput(const JobState& job, hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info,
                     win32::simple_socket& connection) {
  const std::u16string preview = inFolder(job.settings.jpegOutputPath, stem_of(info.Name()) + u".jpg");
  sendStdoutLine(connection, u"Writing jpeg output to: " + writtenName(job.settings, preview));
  hostsdk::BitmapInfo jpegInfo;
  prepareOutputInfo(job, jpegInfo);
  jpegInfo.SetName(preview);
  writeImage(job.settings, bitmap, jpegInfo, connection);
}

constexpr int kAttemptsAtDestination = 5;
constexpr int kAttempts = 10;

std::u16string targetOf(int attempt, const std::u16string& destination) {
  if (attempt <= kAttemptsAtDestination) return destination;
  return replace_file_name(destination,
                           u"_alt_" + to_wstring(attempt - kAttemptsAtDestination - 1) + extension_of(destination));
}

void waitAfterFailure(int attempt, const std::u16string& source, const std::u16string& target,
                      const std::u16string& message, win32::simple_socket& connection) {
  sendStdoutLine(connection, u"Attempt to move " + source + u" to destination failed: " + message);
  sendStdoutLine(connection, u"Waiting " + to_wstring(attempt) + u" seconds to try again.");
  platform::files().deleteFile(target);
  platform::clock().sleep(static_cast<std::uint32_t>(attempt) * 1000U);
}

}  // namespace

void createOutputPath(const hostsdk::BitmapInfo& info, win32::simple_socket& connection) {
  if (info.Name().empty()) return;
  createMissingFolder(parent_of(info.Name()), u"Creating output path: ", connection);
}

void checkJpegFolder(JobState& job, win32::simple_socket& connection) {
  if (job.settings.jpegOutputPath.empty()) {
    sendStdoutLine(connection, u"No jpeg output path specified, disabling jpeg output");
    job.settings.useJpegOutput = false;
    return;
  }
  try {
    createMissingFolder(job.settings.jpegOutputPath, u"Creating jpeg output path: ", connection);
  } catch (const std::exception&) {
    sendStdoutLine(connection, u"Could not create jpeg output path, disabling jpeg output");
    job.settings.useJpegOutput = false;
  }
}

void writeOutput(JobState& job, hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info,
                 win32::simple_socket& connection) {
  const std::u16string& name = info.Name();
  const std::u16string companion = companionIn(parent_of(name), name);
  if (!job.settings.localRendering) sendStdoutLine(connection, protocol::notice::kWriting, name);
  writeImage(job.settings, bitmap, info, connection);
  if (job.settings.localRendering) {
    const std::u16string localCompanion = companionIn(job.settings.tempFolder, name);
    if (file_exists(localCompanion)) moveWithRetries(job.settings, localCompanion, companion, connection);
  }
  job.savedOutputFiles.push_back(name);
  if (file_exists(companion)) job.savedOutputFiles.push_back(companion);
}

void tryWriteJpegOutput(const JobState& job, hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info,
                        win32::simple_socket& connection) {
  try {
    writeJpegOutput(job, bitmap, info, connection);
  } catch (const std::exception& error) {
    sendStdoutLine(connection, u"Failed to save jpeg output because: " + to_wstring(error.what()));
  }
}

void moveWithRetries(const JobSettings& settings, const std::u16string& source, const std::u16string& destination,
                     win32::simple_socket& connection) {
  platform::Files& files = platform::files();
  if (normalize_path(source) == normalize_path(destination) || files.isSameFile(destination, source)) {
    sendStdoutLine(connection, protocol::notice::kMoved, destination);
    return;
  }
  files.deleteFile(destination);

  const int attempts = settings.useAltOutput ? kAttempts : kAttemptsAtDestination;
  std::u16string message;
  for (int attempt = 1; attempt <= attempts; ++attempt) {
    const std::u16string target = targetOf(attempt, destination);
    const std::uint32_t result = files.copyFile(source, target);
    if (result == platform::error::kSuccess) {
      files.deleteFile(source);
      sendStdoutLine(connection, protocol::notice::kMoved, target);
      return;
    }
    message = platform::systemErrorText(result);
    waitAfterFailure(attempt, source, target, message, connection);
  }
  throw std::runtime_error("Failed to save " + to_string(destination) + ": " + to_string(message));
}

}  // namespace corvantis
