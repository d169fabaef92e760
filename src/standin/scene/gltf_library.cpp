// The one unit that compiles the library's implementation.
#include <nlohmann/json.hpp>

#define TINYGLTF_IMPLEMENTATION
#include "standin/scene/gltf_library.h"
