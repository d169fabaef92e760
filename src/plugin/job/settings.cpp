#include "plugin/job/settings.h"

#include <type_traits>

namespace corvantis {
namespace {

struct Kept {};  // the start of a job leaves the setting alone
struct Empty {};

// The one table of settings: row(field, value at load, value at the start of a job).
template <class Row>
void forEachSetting(Row&& row) {
  using S = JobSettings;
  const Kept kept;
  const Empty empty;

  row(&S::restartRendererMode, false, false);
  row(&S::frameNumberBase, 0, 0);
  row(&S::showFrameBuffer, false, true);
  row(&S::removePadding, false, false);
  row(&S::localRendering, false, false);
  row(&S::useOutputImageFilename, false, false);
  row(&S::outputImageFilename, empty, kept);
  row(&S::useRenderElementFilenames, false, false);
  row(&S::renderElementFilenames, empty, kept);
  row(&S::overrideSaveFile, false, false);
  row(&S::overrideSaveFileValue, false, false);
  row(&S::useAltOutput, false, true);
  row(&S::tempFolder, empty, kept);

  row(&S::ignoreMissingExternalFiles, false, kept);
  row(&S::ignoreMissingUVWs, false, kept);
  row(&S::ignoreMissingDLLs, false, kept);
  row(&S::ignoreMissingXREFs, false, kept);
  row(&S::gammaCorrection, false, kept);
  row(&S::gammaIn, 1.0F, kept);
  row(&S::gammaOut, 1.0F, kept);
  row(&S::usePathConfigFile, false, kept);
  row(&S::pathConfigFile, empty, kept);
  row(&S::mergePathConfigFile, false, kept);

  row(&S::jobsDataFolder, empty, kept);
  row(&S::pluginsFolder, empty, kept);

  row(&S::failOnBlackFrames, false, false);
  row(&S::blackPixelPercentage, 0, 0);
  row(&S::blackPixelThreshold, 0.0F, 0.1F);
  row(&S::blackFramesCheckRenderElements, false, false);

  row(&S::useJpegOutput, false, false);
  row(&S::jpegOutputPath, empty, empty);

  row(&S::regionType, 0, 0);
  row(&S::regionRendering, false, false);
  row(&S::regionLeft, 0, 0);
  row(&S::regionTop, 0, 0);
  row(&S::regionRight, 0, 0);
  row(&S::regionBottom, 0, 0);
  row(&S::regionPadding, 0, 0);
  row(&S::regionLeftOver, 0, 0);
  row(&S::regionTopOver, 0, 0);
  row(&S::regionRightOver, 0, 0);
  row(&S::regionBottomOver, 0, 0);

  row(&S::disableMultipass, false, kept);
  row(&S::saveRenderElements, true, kept);
  row(&S::ignoredRenderElementNames, empty, kept);
}

template <class Field, class Value>
void assign(Field& field, const Value& value) {
  if constexpr (std::is_same_v<Value, Empty>) {
    field.clear();
  } else if constexpr (!std::is_same_v<Value, Kept>) {
    field = value;
  }
}

}  // namespace

JobSettings::JobSettings() {
  forEachSetting([this](auto field, const auto& atLoad, const auto&) { assign(this->*field, atLoad); });
}

void resetJobSettings(JobSettings& settings) {
  forEachSetting([&](auto field, const auto&, const auto& atStart) { assign(settings.*field, atStart); });
}

}  // namespace corvantis
