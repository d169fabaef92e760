#include "plugin/render/output_image.h"

#include <cstdlib>
#include <stdexcept>

#include "platform/environment.h"
#include "plugin/util/paths.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

constexpr std::size_t kLongestName = 259;

std::int32_t numberInName(const JobSettings& settings, std::int32_t frame) {
  return static_cast<std::int32_t>(std::int64_t{frame} + settings.frameNumberBase);
}

}  // namespace

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

std::u16string frameOutputName(const JobSettings& settings, const std::u16string& base, std::int32_t frame) {
  std::u16string name = settings.removePadding ? base : make_numbered_name(base, numberInName(settings, frame));
  if (name.size() > kLongestName) {
    throw std::runtime_error("Output file name is too long: \"" + to_string(name) + "\" (" + to_string(name.size()) +
                             " characters, at most " + to_string(kLongestName) + ")");
  }
  return name;
}

std::u16string temporaryOutputName() {
  return ensure_trailing_backslash(platform::commonApplicationDataFolder()) +
         u"Halvquin\\tessaryn\\temp\\temp_filename" + to_wstring(std::rand()) + u".bmp";
}

}  // namespace corvantis
