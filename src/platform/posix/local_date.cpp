#include "platform/posix/local_date.h"

#include <atomic>
#include <chrono>

namespace platform::posix {
namespace {

constinit std::atomic<long> secondsFromUtc{0};

}  // namespace

void noteUtcOffset() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  ::tzset();  // localtime_r alone does not look whether the zone has changed
  if (::localtime_r(&now, &local) != nullptr) secondsFromUtc = local.tm_gmtoff;
}

FileDate localDate(std::time_t moment) {
  const std::chrono::sys_seconds local{std::chrono::seconds{moment + secondsFromUtc}};
  const std::chrono::year_month_day date{std::chrono::floor<std::chrono::days>(local)};
  return {static_cast<int>(static_cast<unsigned>(date.month())), static_cast<int>(static_cast<unsigned>(date.day())),
          static_cast<int>(date.year())};
}

}  // namespace platform::posix
