// Writing rendered images to their files.
#pragma once

#include <string>

#include "hostsdk/bitmap.h"
#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// Creates the folder of `info`'s file with everything above it, and tells the worker; does nothing when the folder is
// there or the name is empty. A folder that cannot be created is not reported: the write that follows fails. Throws
// std::runtime_error "boost::filesystem::status..." when the system cannot tell whether the folder exists.
void createOutputPath(const hostsdk::BitmapInfo& info, win32::simple_socket& connection);

// Opens, writes and closes the file that `info` names and describes. Throws std::runtime_error "Error in
// bm->OpenOutput(): error code " or "Error in bm->Write(): error code " + the host's result; after a failed write the
// output is not closed.
void writeImageFile(hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info);

// Writes the image to `info`'s file and adds it to savedOutputFiles, followed by its companion ("A_" + file name in the
// same folder, which the host's image writer may create) when there is one. With localRendering both are written to
// tempFolder and moved; the list then still holds the names asked for, whatever name the move ended with.
// Throws std::runtime_error as writeImageFile, moveWithRetries and file_exists do.
void writeOutput(JobState& job, hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info,
                 win32::simple_socket& connection);

}  // namespace corvantis
