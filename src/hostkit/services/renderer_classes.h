// Class identifiers of the production host's renderers "A", "B" and "C", which jobs recognise: a host whose renderer is
// to be taken for one of them answers its identifier.
#pragma once

#include "hostsdk/types.h"

namespace hostkit::services {

inline constexpr hostsdk::Class_ID kRendererA{0x52ad1c02, 0x112d2fbc};
inline constexpr hostsdk::Class_ID kRendererB{0x73bab286, 0x77f8fd0c};
inline constexpr hostsdk::Class_ID kRendererC{0x58f67d6c, 0x4fcf3bc3};

}  // namespace hostkit::services
