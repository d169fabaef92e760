#include "plugin/render/region_output.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "plugin/render/output_files.h"
#include "plugin/render/owned_bitmap.h"

namespace corvantis {
namespace {

// The render type of a region that becomes the whole picture, cropped or blown up.
constexpr std::int32_t kRegionIsPicture = 4;

std::uint16_t sizeBetween(std::int32_t from, std::int32_t to) {
  return static_cast<std::uint16_t>(std::int64_t{to} - from);
}

// `over` is the padding that did not fit at both sides together.
std::uint16_t sizeAfterCut(int rendered, std::int32_t padding, std::int64_t over) {
  const std::int64_t size = rendered - 2 * std::int64_t{padding} + over;
  return static_cast<std::uint16_t>(std::clamp<std::int64_t>(size, 0, std::numeric_limits<std::uint16_t>::max()));
}

void setSize(int width, int height, hostsdk::BitmapInfo& info) {
  info.SetWidth(static_cast<std::uint16_t>(width));
  info.SetHeight(static_cast<std::uint16_t>(height));
}

void setCutSize(const JobSettings& settings, int width, int height, hostsdk::BitmapInfo& info) {
  const std::int64_t overX = std::int64_t{settings.regionLeftOver} + settings.regionRightOver;
  const std::int64_t overY = std::int64_t{settings.regionTopOver} + settings.regionBottomOver;
  info.SetWidth(sizeAfterCut(width, settings.regionPadding, overX));
  info.SetHeight(sizeAfterCut(height, settings.regionPadding, overY));
}

// Where the rendered image lands in the cut one.
void setPlacement(const JobSettings& settings, int width, int height, hostsdk::BitmapInfo& info) {
  info.SetCustomX(settings.regionLeftOver - settings.regionPadding);
  info.SetCustomY(settings.regionTopOver - settings.regionPadding);
  info.SetCustomWidth(static_cast<std::uint16_t>(width));
  info.SetCustomHeight(static_cast<std::uint16_t>(height));
  info.SetCustomFlags(info.CustomFlags() | hostsdk::kCustomOffset | hostsdk::kCustomSize);
}

OwnedBitmap createRegionBitmap(const hostsdk::BitmapInfo& info) {
  OwnedBitmap bitmap(hostsdk::TheManager()->Create(info));
  if (!bitmap) throw std::runtime_error("Failed to allocate region Bitmap: TheManager->Create() return NULL");
  return bitmap;
}

}  // namespace

std::optional<hostsdk::Rect> regionToRender(const JobSettings& settings) {
  if (!settings.regionRendering) return std::nullopt;
  return hostsdk::Rect{settings.regionLeft, settings.regionTop, settings.regionRight, settings.regionBottom};
}

void applyRegionSize(JobState& job) {
  const JobSettings& settings = job.settings;
  if (!settings.regionRendering || settings.regionType != kRegionIsPicture) return;
  const std::uint16_t width = sizeBetween(settings.regionLeft, settings.regionRight);
  const std::uint16_t height = sizeBetween(settings.regionTop, settings.regionBottom);
  const auto resize = [=](hostsdk::BitmapInfo& info) {
    info.SetWidth(width);
    info.SetHeight(height);
  };
  resize(job.outputInfo);
  for (hostsdk::ElementOutput* output : job.elementOutputs) resize(output->info);
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
  const OwnedBitmap region = createRegionBitmap(regionInfo);
  setPlacement(job.settings, width, height, regionInfo);
  region->PrepareGChannels(regionInfo);
  if (hostsdk::BitmapStorage* storage = region->Storage()) {
    storage->CopyImage(&bitmap, hostsdk::kCopyImageUseCustom, hostsdk::Color64{}, regionInfo);
  }
  writeOutput(job, *region, regionInfo, connection);
}

}  // namespace corvantis
