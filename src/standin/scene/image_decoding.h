// Turns encoded pictures (PNG, JPEG, BMP, TGA, GIF, Radiance HDR) into texels.
#pragma once

#include <string>
#include <vector>

#include "standin/scene/description.h"

namespace standin::scene {

// How the colour channels of integer pictures are stored; alpha and Radiance HDR are always linear.
enum class Transfer { srgb, linear };

// Empty on success, else why the bytes are no picture that can be used. Leaves image.name alone.
std::string decodeImage(const std::vector<unsigned char>& bytes, Transfer transfer, Image& image);

}  // namespace standin::scene
