// Printed forms.
#pragma once

#include <string>

#include "hostkit/script/machine/runtime.h"
#include "hostsdk/script_value.h"

namespace hostkit::script {

// As the listener shows a value: strings in quotes, names with '#', arrays cut after 20 elements unless
// runtime.printAllElements.
std::u16string printed(Runtime& runtime, const Value& value);
// What `as string` and format's % give: strings and names bare, the text of a string stream, the printed form of
// everything else.
std::u16string asText(Runtime& runtime, const Value& value);

// The listener's text of a native error.
std::u16string printedText(const hostsdk::MAXScriptException& error);

}  // namespace hostkit::script
