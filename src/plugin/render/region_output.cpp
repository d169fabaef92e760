#include "plugin/render/region_output.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "hostsdk/render.h"
#include "plugin/job/frame_hold.h"
#include "plugin/render/output_files.h"

namespace corvantis {
namespace {

// A size keeps its lower 16 bits.
void setSize(std::int64_t width, std::int64_t height, hostsdk::BitmapInfo& info) {
  info.SetWidth(static_cast<std::uint16_t>(width));
  info.SetHeight(static_cast<std::uint16_t>(height));
}

// What the cut leaves of a rendered size, where the padding did not fit at the sides by `firstOver` and `secondOver`.
std::int64_t sizeAfterCut(int rendered, std::int32_t padding, std::int32_t firstOver, std::int32_t secondOver) {
  const std::int64_t size = rendered - 2 * std::int64_t{padding} + firstOver + secondOver;
  return std::clamp<std::int64_t>(size, 0, std::numeric_limits<std::uint16_t>::max());
}

void setCutSize(const JobSettings& settings, int width, int height, hostsdk::BitmapInfo& info) {
  setSize(sizeAfterCut(width, settings.regionPadding, settings.regionLeftOver, settings.regionRightOver),
          sizeAfterCut(height, settings.regionPadding, settings.regionTopOver, settings.regionBottomOver), info);
}

// Where the rendered image lands in the cut one.
void setPlacement(const JobSettings& settings, int width, int height, hostsdk::BitmapInfo& info) {
  info.SetCustomX(settings.regionLeftOver - settings.regionPadding);
  info.SetCustomY(settings.regionTopOver - settings.regionPadding);
  info.SetCustomWidth(static_cast<std::uint16_t>(width));
  info.SetCustomHeight(static_cast<std::uint16_t>(height));
  info.SetCustomFlags(info.CustomFlags() | hostsdk::kCustomOffset | hostsdk::kCustomSize);
}

}  // namespace

std::optional<hostsdk::Rect> regionToRender(const JobSettings& settings) {
  if (!settings.regionRendering) return std::nullopt;
  return hostsdk::Rect{settings.regionLeft, settings.regionTop, settings.regionRight, settings.regionBottom};
}

void applyRegionSize(JobState& job) {
  const JobSettings& settings = job.settings;
  if (!settings.regionRendering || settings.regionType != hostsdk::kRenderTypeRegion) return;
  const std::int64_t width = std::int64_t{settings.regionRight} - settings.regionLeft;
  const std::int64_t height = std::int64_t{settings.regionBottom} - settings.regionTop;
  setSize(width, height, job.outputInfo);
  for (hostsdk::ElementOutput* output : job.elementOutputs) setSize(width, height, output->info);
}

void writeRegionOutput(JobState& job, hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info,
                       win32::simple_socket& connection) {
  const int width = bitmap.Width();
  const int height = bitmap.Height();
  hostsdk::BitmapInfo regionInfo;
  regionInfo.Copy(info);
  if (job.settings.regionPadding < 1) {
    setSize(width, height, regionInfo);
    writeOutput(job, bitmap, regionInfo, connection);
    return;
  }

  setCutSize(job.settings, width, height, regionInfo);
  const OwnedBitmap region = createBitmap(job, regionInfo, "region Bitmap");
  setPlacement(job.settings, width, height, regionInfo);
  region->PrepareGChannels(regionInfo);
  if (hostsdk::BitmapStorage* storage = region->Storage()) {
    storage->CopyImage(&bitmap, hostsdk::kCopyImageUseCustom, hostsdk::Color64{}, regionInfo);
  }
  writeOutput(job, *region, regionInfo, connection);
}

}  // namespace corvantis
