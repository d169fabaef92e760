// UTF-8 of files, terminals and native code to UTF-16 of the host and back. Ill-formed parts become U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace hostkit {

std::string toUtf8(std::u16string_view text);
std::u16string fromUtf8(std::string_view bytes);

}  // namespace hostkit
