#include "hostkit/script/machine/times.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace hostkit::script {
namespace {

std::int32_t rounded(double ticks) {
  if (std::isnan(ticks)) return 0;
  return static_cast<std::int32_t>(std::lround(std::clamp(ticks, double{std::numeric_limits<std::int32_t>::min()},
                                                          double{std::numeric_limits<std::int32_t>::max()})));
}

}  // namespace

std::int32_t ticksOf(const NumberLiteral& time, HostBindings& host) {
  if (time.kind == NumberLiteral::Kind::normalizedTime) {
    const HostInterval segment = host.activeSegment();
    return rounded(segment.start + time.number * (static_cast<double>(segment.end) - segment.start));
  }
  return rounded(time.ticks + time.frames * host.ticksPerFrame());
}

std::int32_t ticksOfFrames(double frames, HostBindings& host) { return rounded(frames * host.ticksPerFrame()); }

double framesOf(std::int32_t ticks, HostBindings& host) { return static_cast<double>(ticks) / host.ticksPerFrame(); }

}  // namespace hostkit::script
