#include "plugin/job/settings.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace corvantis {
namespace {

using Texts = std::vector<std::u16string>;
using Value = std::variant<bool, std::int32_t, float, std::u16string, Texts>;
const std::u16string kEmpty;
const Texts kNoTexts;
const std::nullopt_t kKept = std::nullopt;

struct Row {
  const char* name;
  std::function<Value(const JobSettings&)> read;
  std::function<void(JobSettings&)> disturb;  // gives the field a value that is neither of the two below
  Value atLoad;
  std::optional<Value> afterReset;
};

template <class Field>
Row row(const char* name, Field JobSettings::*field, Field atLoad, std::optional<Field> afterReset, Field other) {
  return {name, [=](const JobSettings& s) { return Value(s.*field); }, [=](JobSettings& s) { s.*field = other; },
          Value(atLoad), afterReset ? std::optional<Value>(*afterReset) : std::nullopt};
}

// A flag is disturbed to the opposite of what the reset makes of it.
Row flag(const char* name, bool JobSettings::*field, bool atLoad, std::optional<bool> afterReset) {
  return row(name, field, atLoad, afterReset, afterReset ? !*afterReset : !atLoad);
}
Row number(const char* name, std::int32_t JobSettings::*field) { return row<std::int32_t>(name, field, 0, 0, 17); }
Row text(const char* name, std::u16string JobSettings::*field, std::optional<std::u16string> afterReset) {
  return row<std::u16string>(name, field, kEmpty, afterReset, u"C:\\something");
}
Row texts(const char* name, Texts JobSettings::*field) {
  return row<Texts>(name, field, kNoTexts, kKept, {u"a", u"b"});
}

std::vector<Row> publishedTable() {
  using S = JobSettings;
  return {
      flag("restartRendererMode", &S::restartRendererMode, false, false),
      number("frameNumberBase", &S::frameNumberBase),
      flag("showFrameBuffer", &S::showFrameBuffer, false, true),
      flag("removePadding", &S::removePadding, false, false),
      flag("localRendering", &S::localRendering, false, false),
      flag("useOutputImageFilename", &S::useOutputImageFilename, false, false),
      text("outputImageFilename", &S::outputImageFilename, kKept),
      flag("useRenderElementFilenames", &S::useRenderElementFilenames, false, false),
      texts("renderElementFilenames", &S::renderElementFilenames),
      flag("overrideSaveFile", &S::overrideSaveFile, false, false),
      flag("overrideSaveFileValue", &S::overrideSaveFileValue, false, false),
      flag("ignoreMissingExternalFiles", &S::ignoreMissingExternalFiles, false, kKept),
      flag("ignoreMissingUVWs", &S::ignoreMissingUVWs, false, kKept),
      flag("ignoreMissingDLLs", &S::ignoreMissingDLLs, false, kKept),
      flag("ignoreMissingXREFs", &S::ignoreMissingXREFs, false, kKept),
      flag("gammaCorrection", &S::gammaCorrection, false, kKept),
      row<float>("gammaIn", &S::gammaIn, 1.0F, kKept, 2.2F),
      row<float>("gammaOut", &S::gammaOut, 1.0F, kKept, 2.2F),
      flag("usePathConfigFile", &S::usePathConfigFile, false, kKept),
      text("pathConfigFile", &S::pathConfigFile, kKept),
      flag("mergePathConfigFile", &S::mergePathConfigFile, false, kKept),
      text("tempFolder", &S::tempFolder, kKept),
      text("jobsDataFolder", &S::jobsDataFolder, kKept),
      text("pluginsFolder", &S::pluginsFolder, kKept),
      flag("failOnBlackFrames", &S::failOnBlackFrames, false, false),
      number("blackPixelPercentage", &S::blackPixelPercentage),
      row<float>("blackPixelThreshold", &S::blackPixelThreshold, 0.0F, 0.1F, 0.7F),
      flag("blackFramesCheckRenderElements", &S::blackFramesCheckRenderElements, false, false),
      flag("useJpegOutput", &S::useJpegOutput, false, false),
      text("jpegOutputPath", &S::jpegOutputPath, kEmpty),
      flag("useAltOutput", &S::useAltOutput, false, true),
      number("regionType", &S::regionType),
      flag("regionRendering", &S::regionRendering, false, false),
      number("regionLeft", &S::regionLeft),
      number("regionTop", &S::regionTop),
      number("regionRight", &S::regionRight),
      number("regionBottom", &S::regionBottom),
      number("regionPadding", &S::regionPadding),
      number("regionLeftOver", &S::regionLeftOver),
      number("regionTopOver", &S::regionTopOver),
      number("regionRightOver", &S::regionRightOver),
      number("regionBottomOver", &S::regionBottomOver),
      flag("disableMultipass", &S::disableMultipass, false, kKept),
      flag("saveRenderElements", &S::saveRenderElements, true, kKept),
      texts("ignoredRenderElementNames", &S::ignoredRenderElementNames),
  };
}

TEST(JobSettings, HoldTheirValuesAtLoad) {
  const JobSettings settings;
  for (const Row& row : publishedTable()) EXPECT_TRUE(row.read(settings) == row.atLoad) << row.name;
}

TEST(JobSettings, AreResetOrKeptByTheStartOfAJob) {
  for (const Row& row : publishedTable()) {
    JobSettings settings;
    row.disturb(settings);
    const Value disturbed = row.read(settings);
    ASSERT_FALSE(disturbed == row.afterReset.value_or(row.atLoad)) << row.name;
    resetJobSettings(settings);
    EXPECT_TRUE(row.read(settings) == row.afterReset.value_or(disturbed)) << row.name;
  }
}

}  // namespace
}  // namespace corvantis
