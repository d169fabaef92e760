// The black-frame check: a render that comes out black counts as failed.
#pragma once

#include "hostsdk/bitmap.h"
#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// Counts the pixels of `bitmap` that are black within blackPixelThreshold and tells the worker the count. Throws
// std::runtime_error when their share, in whole percent rounded down, is at least blackPixelPercentage; with a
// percentage of 0 every checked image fails.
//
// A pixel is black when red, green and blue are at most the threshold t and alpha is at most t or at least 1 - t. NaN
// is never black. Pixels are read one at a time, column by column; one that the host cannot read counts as (0, 0, 0,
// 0). A bitmap without pixels or without storage has nothing to judge: 0 of 0 pixels, 0 percent.
void checkBlackFrame(const JobState& job, hostsdk::Bitmap& bitmap, win32::simple_socket& connection);

}  // namespace corvantis
