#include "plugin/daemon/region_command.h"

#include <array>

#include "plugin/daemon/region.h"
#include "plugin/daemon/reply.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

// The render types of the host.
constexpr std::int32_t kNoCrop = 1, kCrop = 4;

struct Mode {
  std::u16string_view word;
  std::int32_t regionType;
  bool blowUp;
};
constexpr Mode kModes[] = {{u"NOCROP", kNoCrop, false}, {u"CROP", kCrop, false}, {u"BLOWUP", kCrop, true}};

void replyInvalid(const CommandCall& call, std::size_t index, const std::u16string& rest) {
  sendReply(call.socket, u"ERROR: RegionRendering: Parameter " + to_wstring(std::uint64_t{index + 1}) + u", \"" +
                             call.parameters[index] + u"\", is not " + rest + u".");
}

// Padding is stored at once. nullopt after an error reply.
std::optional<RegionRectangle> readRectangle(const CommandCall& call) {
  static constexpr const char16_t* kNames[] = {u"Padding", u"Left", u"Top", u"Right", u"Bottom"};
  std::array<std::int32_t, std::size(kNames)> values{};
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::optional<std::int32_t> value = integerIn(call.parameters[i]);
    if (!value) {
      replyInvalid(call, i, std::u16string(u"a valid value for ") + kNames[i]);
      return std::nullopt;
    }
    values[i] = *value;
    if (i == 0) call.jobState.settings.regionPadding = *value;
  }
  return RegionRectangle{values[1], values[2], values[3], values[4]};
}

const Mode* readMode(const CommandCall& call) {
  for (const Mode& mode : kModes)
    if (call.parameters[5] == mode.word) return &mode;
  replyInvalid(call, 5, u"CROP, NOCROP, or BLOWUP");
  return nullptr;
}

OutputSize outputSize(hostsdk::Interface8& core) { return {core.RenderWidth(), core.RenderHeight()}; }

void logEdge(const char* name, std::int32_t value, std::int32_t over) {
  log_file << name << ": " << value << ", over: " << over << LogFile::endl;
}

// Edges are logged as they were before the cut where something was cut off.
void logRegion(const ClampedRegion& cut, const RegionRectangle& whole) {
  if (cut.over.left > 0) log_file << "Left less than 0: " << whole.left << LogFile::endl;
  logEdge("Left", cut.region.left, cut.over.left);
  if (cut.over.top > 0) log_file << "Top less than 0: " << whole.top << LogFile::endl;
  logEdge("Top", cut.region.top, cut.over.top);
  if (cut.over.right > 0) log_file << "Right greater than width: " << whole.right << LogFile::endl;
  logEdge("Right", cut.region.right, cut.over.right);
  if (cut.over.bottom > 0) log_file << "Bottom greater than height: " << whole.bottom << LogFile::endl;
  logEdge("Bottom", cut.region.bottom, cut.over.bottom);
}

void store(JobSettings& settings, const ClampedRegion& cut) {
  settings.regionLeft = cut.region.left;
  settings.regionTop = cut.region.top;
  settings.regionRight = cut.region.right;
  settings.regionBottom = cut.region.bottom;
  settings.regionLeftOver = cut.over.left;
  settings.regionTopOver = cut.over.top;
  settings.regionRightOver = cut.over.right;
  settings.regionBottomOver = cut.over.bottom;
}

// Everything that can fail comes before the host's output size is touched; the size that cuts the region is the one the
// host has afterwards.
void applyRegion(JobState& jobState, RegionRectangle region, const Mode& mode) {
  if (jobState.hostCore.v8 == nullptr)
    throw RegionError("The size of the render output is not known before the first StartJob.");
  hostsdk::Interface8& core = *jobState.hostCore.v8;
  JobSettings& settings = jobState.settings;
  OutputSize output = outputSize(core);
  if (mode.blowUp) {
    const Blowup blown = blowUp(region, output);
    region = blown.region;
    output = blown.output;
  }
  const RegionRectangle whole = padded(region, settings.regionPadding);
  clamped(whole, output);
  if (mode.blowUp) {
    core.SetRenderWidth(output.width);
    core.SetRenderHeight(output.height);
  }
  const ClampedRegion cut = clamped(whole, outputSize(core));
  settings.regionType = mode.regionType;
  store(settings, cut);
  logRegion(cut, whole);
}

}  // namespace

void setRegion(const CommandCall& call) {
  const std::optional<RegionRectangle> region = readRectangle(call);
  if (!region) return;
  const Mode* mode = readMode(call);
  if (mode == nullptr) return;
  try {
    applyRegion(call.jobState, *region, *mode);
  } catch (const RegionError& error) {
    sendReply(call.socket, "ERROR: RegionRendering: " + std::string(error.what()));
  }
}

}  // namespace corvantis
