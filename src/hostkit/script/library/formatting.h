// printf forms for numbers.
#pragma once

#include <string>

#include "hostkit/script/machine/runtime.h"

namespace hostkit::script {

// `form` is what stands after the '%' of printf: flags, width, precision and one of d i u x X o c e E f g G s. Throws a
// script error for anything else.
std::u16string formatNumber(Runtime& runtime, const Value& value, const std::u16string& form);

}  // namespace hostkit::script
