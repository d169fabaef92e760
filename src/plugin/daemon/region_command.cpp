// Restricts rendering to a region of the output. All numbers are pixels of the render output; right and bottom are
// exclusive, and nothing says that they lie right of and below left and top. A number that leaves the 32-bit range is
// refused.
#include <array>
#include <limits>
#include <stdexcept>
#include <utility>

#include "hostsdk/render.h"
#include "plugin/daemon/commands.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

using hostsdk::Rect;

struct OutputSize {
  std::int32_t width = 0, height = 0;
};

// A region that cannot be rendered. The text says why, for the worker to read.
class RegionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Blowup {
  OutputSize output;
  Rect region;
};

// A region cut at the output's edges, with what was cut off.
struct ClampedRegion {
  Rect region;
  Rect over;
};

template <class Wide>
std::int32_t inRange(Wide value, const char* textOtherwise) {
  if (value < static_cast<Wide>(std::numeric_limits<std::int32_t>::min()) ||
      value > static_cast<Wide>(std::numeric_limits<std::int32_t>::max()))
    throw RegionError(textOtherwise);
  return static_cast<std::int32_t>(value);
}

template <class Wide>
std::int32_t edge(Wide value) {
  return inRange(value, "The region with its padding is outside the range of pixel coordinates.");
}

std::int32_t side(double value) {
  return inRange(value, "BLOWUP would need an output outside the range of pixel coordinates.");
}

// The edge, and how far it lay outside.
std::pair<std::int32_t, std::int32_t> cutBelowZero(std::int32_t value) {
  if (value >= 0) return {value, 0};
  return {0, edge(-std::int64_t{value})};
}
std::pair<std::int32_t, std::int32_t> cutAbove(std::int32_t value, std::int32_t limit) {
  if (value <= limit) return {value, 0};
  return {limit, edge(std::int64_t{value} - limit)};
}

// The enlarged output in which `region` is as wide as `output` is now, and the window of it to render: scaled at its
// top left corner, of the present output's size. The horizontal scale serves both axes; every number is cut toward
// zero.
Blowup blowUp(const Rect& region, OutputSize output) {
  const std::int64_t width = std::int64_t{region.right} - region.left;
  if (width == 0) throw RegionError("Left and Right are equal, so BLOWUP has no scale.");
  if (width < 0) throw RegionError("Right is less than Left, so BLOWUP would need an output of negative size.");
  const double scale = static_cast<double>(output.width) / static_cast<double>(width);
  Blowup result;
  result.output = {side(output.width * scale), side(output.height * scale)};
  const std::int32_t left = edge(region.left * scale), top = edge(region.top * scale);
  result.region = {left, top, edge(std::int64_t{left} + output.width), edge(std::int64_t{top} + output.height)};
  return result;
}

// The region with `padding` pixels on every side.
Rect padded(const Rect& region, std::int32_t padding) {
  return {edge(std::int64_t{region.left} - padding), edge(std::int64_t{region.top} - padding),
          edge(std::int64_t{region.right} + padding), edge(std::int64_t{region.bottom} + padding)};
}

// A left or top beyond the output, or a right or bottom before it, is not cut.
ClampedRegion clamped(const Rect& region, OutputSize output) {
  const auto [left, leftOver] = cutBelowZero(region.left);
  const auto [top, topOver] = cutBelowZero(region.top);
  const auto [right, rightOver] = cutAbove(region.right, output.width);
  const auto [bottom, bottomOver] = cutAbove(region.bottom, output.height);
  return {{left, top, right, bottom}, {leftOver, topOver, rightOver, bottomOver}};
}

struct Mode {
  std::u16string_view word;
  std::int32_t regionType;
  bool blowUp;
};
constexpr Mode kModes[] = {{u"NOCROP", hostsdk::kRenderTypeWhole, false},
                           {u"CROP", hostsdk::kRenderTypeRegion, false},
                           {u"BLOWUP", hostsdk::kRenderTypeRegion, true}};

// Padding is stored at once. nullopt after an error reply.
std::optional<Rect> readRectangle(const CommandCall& call) {
  static constexpr const char16_t* kNames[] = {u"Padding", u"Left", u"Top", u"Right", u"Bottom"};
  std::array<std::int32_t, std::size(kNames)> values{};
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::optional<std::int32_t> value = integerIn(call.parameters[i]);
    if (!value) {
      replyError(call, invalidParameter(call, i, std::u16string(u"a valid value for ") + kNames[i]));
      return std::nullopt;
    }
    values[i] = *value;
    if (i == 0) call.job.settings.regionPadding = *value;
  }
  return Rect{values[1], values[2], values[3], values[4]};
}

const Mode* readMode(const CommandCall& call) {
  for (const Mode& mode : kModes)
    if (call.parameters[5] == mode.word) return &mode;
  replyError(call, invalidParameter(call, 5, u"CROP, NOCROP, or BLOWUP"));
  return nullptr;
}

OutputSize outputSize(hostsdk::Interface8& core) { return {core.RenderWidth(), core.RenderHeight()}; }

void logEdge(const char* name, std::int32_t value, std::int32_t over) {
  log_file << name << ": " << value << ", over: " << over << LogFile::endl;
}

// Edges are logged as they were before the cut where something was cut off.
void logRegion(const ClampedRegion& cut, const Rect& whole) {
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
void applyRegion(JobState& job, Rect region, const Mode& mode) {
  if (job.hostCore.v8 == nullptr)
    throw RegionError("The size of the render output is not known before the first StartJob.");
  hostsdk::Interface8& core = *job.hostCore.v8;
  JobSettings& settings = job.settings;
  OutputSize output = outputSize(core);
  if (mode.blowUp) {
    const Blowup blown = blowUp(region, output);
    region = blown.region;
    output = blown.output;
  }
  const Rect whole = padded(region, settings.regionPadding);
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
  const std::optional<Rect> region = readRectangle(call);
  if (!region) return;
  const Mode* mode = readMode(call);
  if (mode == nullptr) return;
  try {
    applyRegion(call.job, *region, *mode);
  } catch (const RegionError& error) {
    replyError(call, to_wstring(error.what()));
  }
}

}  // namespace corvantis
