// What the images of a frame are like: pixel type, size, file names.
#pragma once

#include <cstdint>
#include <string>

#include "hostsdk/bitmap.h"
#include "plugin/job/job_state.h"

namespace corvantis {

// Gives `info` the pixel type that the renderer wants (32-bit float with requirement 3, else 16-bit integer), the alpha
// flag, and the size and pixel aspect of the scene's render settings. A size beyond 16 bits loses its upper bits.
void prepareOutputInfo(const JobState& job, hostsdk::BitmapInfo& info);

// Asks the current renderer, created if needed; false when there is none.
bool rendererHasRequirement(const JobState& job, int requirement);

// The name under which `base` is saved for `frame`: numbered with frame + frameNumberBase (which wraps around beyond 32
// bits), or `base` itself with removePadding. Throws std::runtime_error "Output file name is too long: " + the name in
// quotes when it has more than 259 characters, the most that the host's file operations take.
std::u16string frameOutputName(const JobSettings& settings, const std::u16string& base, std::int32_t frame);

// A base name for a scene that does not save its output: a random one in the common application-data folder.
std::u16string temporaryOutputName();

}  // namespace corvantis
