// Running a script file.
#pragma once

#include <string>

#include "hostsdk/script_value.h"

namespace corvantis::mxs {

// Runs the script file at a Windows path and gives the value of its last expression (see evaluate for how long it
// lives, and for script errors). Throws std::runtime_error
// "mxs::file_in() - Tried to execute a maxscript file which doesn't exist: "<path>"" before anything is opened.
// A host that cannot open the file makes this a script error.
hostsdk::Value* file_in(const std::u16string& path);

}  // namespace corvantis::mxs
