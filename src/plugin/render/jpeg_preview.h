// A JPEG copy of every saved main image, in a folder of its own.
#pragma once

#include "hostsdk/bitmap.h"
#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// Creates the preview folder when it is missing. An empty path, or a folder that the system cannot tell about, clears
// useJpegOutput and tells the worker; the frame goes on.
void checkJpegFolder(JobState& job, win32::simple_socket& connection);

// Writes the preview of the image that `info` names: the name's stem + ".jpg" in jpegOutputPath, by way of tempFolder
// with localRendering. It is not listed in savedOutputFiles. Throws std::runtime_error as writeImageFile and
// moveWithRetries do.
void writeJpegOutput(const JobState& job, hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info,
                     win32::simple_socket& connection);

// The same for a frame that must not fail because of it: a std::exception only becomes a line to the worker.
void tryWriteJpegOutput(const JobState& job, hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info,
                        win32::simple_socket& connection);

}  // namespace corvantis
