// Where scripts see what is printed for them.
#pragma once

#include <string>

#include "hostsdk/script_runtime.h"

namespace corvantis::mxs {

// Where the calling thread's scripts print at present: the listener unless a script has turned it elsewhere.
hostsdk::CharStream& currentOutput(hostsdk::ScriptRuntime& runtime);

// Prints as it stands, without a line end. Does nothing when no host is bound.
void printToListener(const std::u16string& text);

}  // namespace corvantis::mxs
