#include "plugin/render/move_with_retries.h"

#include <cstdint>
#include <stdexcept>

#include "platform/clock.h"
#include "platform/files.h"
#include "plugin/daemon/requests/requests.h"
#include "plugin/util/paths.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

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

void moveWithRetries(const JobSettings& settings, const std::u16string& source, const std::u16string& destination,
                     win32::simple_socket& connection) {
  if (normalize_path(source) == normalize_path(destination)) {
    sendStdoutLine(connection, u"Saved image to " + destination);
    return;
  }
  platform::Files& files = platform::files();
  files.deleteFile(destination);

  const int attempts = settings.useAltOutput ? kAttempts : kAttemptsAtDestination;
  std::u16string message;
  for (int attempt = 1; attempt <= attempts; ++attempt) {
    const std::u16string target = targetOf(attempt, destination);
    const std::uint32_t result = files.copyFile(source, target);
    if (result == platform::error::kSuccess) {
      files.deleteFile(source);
      sendStdoutLine(connection, u"Saved image to " + target);
      return;
    }
    message = platform::systemErrorText(result);
    waitAfterFailure(attempt, source, target, message, connection);
  }
  throw std::runtime_error("Failed to save " + to_string(destination) + ": " + to_string(message));
}

}  // namespace corvantis
