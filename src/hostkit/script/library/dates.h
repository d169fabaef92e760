// Dates as scripts show them.
#pragma once

#include <ctime>
#include <string>

namespace hostkit::script {

// The local calendar time; the numbers of a date that the calendar lacks are 0.
std::tm localCalendar(std::time_t moment);
// "11/22/2026 9:30:05 PM"
std::u16string dateText(std::time_t moment);

}  // namespace hostkit::script
