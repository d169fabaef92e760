// Where the tests find the files of the project and the programs of the build. UTF-8, without a closing slash.
#pragma once

#include <string>

namespace support {

std::string sourceFolder();
std::string programFolder();      // host, worker, plug-in and the host port
std::string testProgramFolder();  // what is built for tests alone

}  // namespace support
