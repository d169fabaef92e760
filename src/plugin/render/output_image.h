// File names of a frame's outputs.
#pragma once

#include <cstdint>
#include <string>

#include "plugin/job/settings.h"

namespace corvantis {

// The name under which `base` is saved for `frame`: numbered with frame + frameNumberBase (which wraps around beyond 32
// bits), or `base` itself with removePadding. Throws std::runtime_error "Output file name is too long: " + the name in
// quotes when it has more than 259 characters, the most that the host's file operations take.
std::u16string frameOutputName(const JobSettings& settings, const std::u16string& base, std::int32_t frame);

// A base name for a scene that does not save its output: a random one in the common application-data folder.
std::u16string temporaryOutputName();

}  // namespace corvantis
