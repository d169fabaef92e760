// Tests for files and folders, and making folders, on Windows paths.
#pragma once

#include <string>

namespace corvantis {

// Whether a file, not a folder, exists. A path that cannot name anything (missing folder, unknown share, invalid
// name) is an answer of false; any other failure to look throws std::runtime_error
// "file_exists: Could not get the file attributes of \"" + path + "\"".
bool file_exists(const std::u16string& path);

// Whether a folder exists. False when it is missing or something else, its drive is not there or not ready, its share's
// server unknown (an unknown share is not), or its name no name; any other failure to look throws
// std::runtime_error "boost::filesystem::status: " + the system's text + ": \"" + path + "\"".
bool directory_exists(const std::u16string& path);

// Creates the folder and every missing one above it, the uppermost first. Reports nothing.
void make_directories(std::u16string path);

}  // namespace corvantis
