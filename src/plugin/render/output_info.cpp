#include "plugin/render/output_info.h"

#include <cstdint>

namespace corvantis {

void prepareOutputInfo(const JobState& job, hostsdk::BitmapInfo& info) {
  const bool wantsFloat = rendererHasRequirement(job, hostsdk::kRequirementFloatOutput);
  info.SetType(wantsFloat ? hostsdk::kBitmapRealPixFloat32 : hostsdk::kBitmapTrueColor64);
  info.SetFlags(hostsdk::kMapHasAlpha);
  info.SetWidth(static_cast<std::uint16_t>(job.hostCore.v8->RenderWidth()));
  info.SetHeight(static_cast<std::uint16_t>(job.hostCore.v8->RenderHeight()));
  info.SetAspect(job.hostCore.v8->RenderPixelAspect());
}

bool rendererHasRequirement(const JobState& job, int requirement) {
  const hostsdk::Renderer* renderer = job.hostCore.v8->CurrentRenderer(true);
  return renderer != nullptr && renderer->HasRequirement(requirement);
}

}  // namespace corvantis
