// Writing rendered images to their files, and the JPEG copy of every saved main image to a folder of its own.
//
// With localRendering a file is first written to tempFolder and then moved onto its name, which may be locked for a
// while.
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

// Creates the preview folder likewise. An empty path, or a folder that the system cannot tell about, clears
// useJpegOutput and tells the worker; the frame goes on.
void checkJpegFolder(JobState& job, win32::simple_socket& connection);

// Writes the image to the file that `info` names and describes and adds it to savedOutputFiles, followed by its
// companion ("A_" + file name in the same folder, which the host's image writer may create) when there is one. The list
// holds the names asked for, whatever name a move ended with.
//
// Throws std::runtime_error "Error in bm->OpenOutput(): error code " or "Error in bm->Write(): error code " + the
// host's result, after which the output is not closed; and as moveWithRetries and file_exists do.
void writeOutput(JobState& job, hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info,
                 win32::simple_socket& connection);

// Writes the preview of the image that `info` names: the name's stem + ".jpg" in jpegOutputPath. It is not listed in
// savedOutputFiles. A std::exception only becomes a line to the worker: no frame is to fail for want of its preview.
void tryWriteJpegOutput(const JobState& job, hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info,
                        win32::simple_socket& connection);

// Copies `source` over `destination` and deletes `source`. Each failed attempt is told to the worker and followed by a
// wait of as many seconds as there were attempts: five go to the destination itself and then, with useAltOutput, five
// more to names that end in "_alt_0" to "_alt_4". Blocks for up to 15 or 55 seconds by the platform's clock.
//
// Throws std::runtime_error "Failed to save " + destination + ": " + the system's last error text; `source` then stays
// where it is. A file that is to be moved onto itself, however that is spelled, stays
// and counts as saved.
void moveWithRetries(const JobSettings& settings, const std::u16string& source, const std::u16string& destination,
                     win32::simple_socket& connection);

}  // namespace corvantis
