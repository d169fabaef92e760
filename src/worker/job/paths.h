// Paths of a job: as users write and see them (native), and as they go over the wire (Windows paths in UTF-8).
#pragma once

#include <string>

namespace worker {

// `path` below `folder`, or below the current folder where that is empty or relative; an absolute or empty path stays
// what it is. "." and ".." are carried out by text. std::invalid_argument for a name that would be another one in a
// host: one with a backslash where that separates nothing.
std::string absolutePath(const std::string& path, const std::string& folder = {});

std::string windowsName(const std::string& nativePath);
// A text that is not valid UTF-8 is given back as it is.
std::string nativeName(const std::string& windowsPath);

}  // namespace worker
