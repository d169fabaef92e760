// Where the host port stands, so that it can be put back there.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hostsdk/script_runtime.h"

namespace hostkit::script {

struct PortMark {
  std::size_t frames = 0;  // allocation frames
  std::size_t slots = 0;   // linked slots
  hostsdk::CharStream* output = nullptr;
  std::int32_t evaluationLevel = 0, sourcePosition = 0;
};

}  // namespace hostkit::script
