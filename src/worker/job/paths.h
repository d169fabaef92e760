// Paths as they go over the wire (Windows paths in UTF-8) and as users see them (native).
#pragma once

#include <string>

namespace worker {

std::string windowsName(const std::string& nativePath);
// A text that is not valid UTF-8 is given back as it is.
std::string nativeName(const std::string& windowsPath);

}  // namespace worker
