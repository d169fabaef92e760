// The settings of a job, one field a setting, in three groups by how long a value lasts. An initialiser is the value
// when the plug-in is loaded; in the first group it is what the start of a job makes of the setting as well. A setting
// is added by writing it into its group.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace corvantis {

// Settings of one job: its start gives each the value below.
struct OneJobSettings {
  bool restartRendererMode = false;
  bool showFrameBuffer = true;

  // Output names and files.
  std::int32_t frameNumberBase = 0;
  bool removePadding = false;
  bool localRendering = false;
  bool useOutputImageFilename = false;
  bool useRenderElementFilenames = false;
  bool overrideSaveFile = false;
  bool overrideSaveFileValue = false;
  bool useAltOutput = true;

  // Black-frame check: percent 0..100, channel value 0..1.
  bool failOnBlackFrames = false;
  std::int32_t blackPixelPercentage = 0;
  float blackPixelThreshold = 0.1F;
  bool blackFramesCheckRenderElements = false;

  // JPEG preview.
  bool useJpegOutput = false;
  std::u16string jpegOutputPath;

  // Region, in pixels of the render output; padding already added, the part that did not fit in the overs. The type is
  // the host's render type code: 1 renders the whole size, 4 the region's, 0 stands for no region.
  std::int32_t regionType = 0;
  bool regionRendering = false;
  std::int32_t regionLeft = 0, regionTop = 0, regionRight = 0, regionBottom = 0;
  std::int32_t regionPadding = 0;
  std::int32_t regionLeftOver = 0, regionTopOver = 0, regionRightOver = 0, regionBottomOver = 0;
};

// Settings that the start of a job keeps and applies while it opens the scene, so they must be there before it.
struct OpeningSettings {
  bool ignoreMissingExternalFiles = false;
  bool ignoreMissingUVWs = false;
  bool ignoreMissingDLLs = false;
  bool ignoreMissingXREFs = false;
  bool gammaCorrection = false;
  float gammaIn = 1.0F;
  float gammaOut = 1.0F;
  bool usePathConfigFile = false;
  std::u16string pathConfigFile;
  bool mergePathConfigFile = false;
};

// Settings that the start of a job keeps, given at any time.
struct LastingSettings {
  std::u16string tempFolder;
  std::u16string jobsDataFolder;  // for scripts that ask
  std::u16string pluginsFolder;
  std::u16string outputImageFilename;
  std::vector<std::u16string> renderElementFilenames;
  bool disableMultipass = false;
  bool saveRenderElements = true;
  std::vector<std::u16string> ignoredRenderElementNames;
};

struct JobSettings : OneJobSettings, OpeningSettings, LastingSettings {
  // The values at load, where three settings of a job that has not begun are off or nought.
  JobSettings() {
    showFrameBuffer = false;
    useAltOutput = false;
    blackPixelThreshold = 0.0F;
  }
};

// What the start of a job makes of the settings.
inline void resetJobSettings(JobSettings& settings) { static_cast<OneJobSettings&>(settings) = {}; }

}  // namespace corvantis
