// The text by which the plug-in tells the worker which build it is.
#pragma once

#include <string>

namespace corvantis {

// Build date and time as the compiler gives them: "May 27 2019 17:22:03 R". A one-digit day has a second blank before
// it.
std::string buildVersionString();

}  // namespace corvantis
