// Times: 4800 ticks a second, frames by the host's frame rate.
#pragma once

#include <cstdint>

#include "hostkit/script/machine/host_bindings.h"
#include "hostkit/script/syntax/token.h"

namespace hostkit::script {

std::int32_t ticksOf(const NumberLiteral& time, HostBindings& host);
std::int32_t ticksOfFrames(double frames, HostBindings& host);
double framesOf(std::int32_t ticks, HostBindings& host);

}  // namespace hostkit::script
