#include "hostkit/services/system_log.h"

#include <fmt/format.h>

#include <array>

#include "hostkit/text/utf8.h"

namespace hostkit::services {

void SystemLog::LogEntry(Level level, bool, const std::u16string& title, const std::u16string& text) {
  static constexpr std::array<const char*, 4> kNames{"error", "warning", "info", "debug"};
  fmt::print(stderr, "{}: {}: {}\n", kNames.at(static_cast<std::size_t>(level)), toUtf8(title), toUtf8(text));
}

void SystemLog::line(const std::string& text) { fmt::print(stderr, "{}: {}\n", program_, text); }

}  // namespace hostkit::services
