// The settings of a job, one field a setting. What each holds when the plug-in is loaded, and what the start of a job
// makes of it, is told by the one table in settings.cpp.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace corvantis {

struct JobSettings {
  // The values at load.
  JobSettings();

  // Frames and output names.
  bool restartRendererMode{};
  std::int32_t frameNumberBase{};
  bool showFrameBuffer{};
  bool removePadding{};
  bool localRendering{};
  bool useOutputImageFilename{};
  std::u16string outputImageFilename;
  bool useRenderElementFilenames{};
  std::vector<std::u16string> renderElementFilenames;
  bool overrideSaveFile{};
  bool overrideSaveFileValue{};
  bool useAltOutput{};
  std::u16string tempFolder;

  // Scene load.
  bool ignoreMissingExternalFiles{};
  bool ignoreMissingUVWs{};
  bool ignoreMissingDLLs{};
  bool ignoreMissingXREFs{};
  bool gammaCorrection{};
  float gammaIn{};
  float gammaOut{};
  bool usePathConfigFile{};
  std::u16string pathConfigFile;
  bool mergePathConfigFile{};

  // Folders that scripts may ask for.
  std::u16string jobsDataFolder;
  std::u16string pluginsFolder;

  // Black-frame check: percent 0..100, channel value 0..1.
  bool failOnBlackFrames{};
  std::int32_t blackPixelPercentage{};
  float blackPixelThreshold{};
  bool blackFramesCheckRenderElements{};

  // JPEG preview.
  bool useJpegOutput{};
  std::u16string jpegOutputPath;

  // Region, in pixels of the render output; padding already added, the part that did not fit in the overs. The type is
  // the host's render type code: 1 renders the whole size, 4 the region's, 0 stands for no region.
  std::int32_t regionType{};
  bool regionRendering{};
  std::int32_t regionLeft{}, regionTop{}, regionRight{}, regionBottom{};
  std::int32_t regionPadding{};
  std::int32_t regionLeftOver{}, regionTopOver{}, regionRightOver{}, regionBottomOver{};

  // Passes and elements.
  bool disableMultipass{};
  bool saveRenderElements{};
  std::vector<std::u16string> ignoredRenderElementNames;
};

// Gives the settings that belong to one job their values for the start of a job; the others are kept.
void resetJobSettings(JobSettings& settings);

}  // namespace corvantis
