#include "plugin/daemon/command_table.h"

#include "plugin/daemon/job_commands.h"
#include "plugin/daemon/region_command.h"
#include "plugin/daemon/script_commands.h"
#include "plugin/daemon/commands.h"

namespace corvantis {
namespace {

using S = JobSettings;

constexpr CountRule any;
constexpr CountRule exactly(std::size_t count) { return {CountRule::Kind::exactly, count}; }
constexpr CountRule atLeast(std::size_t count) { return {CountRule::Kind::atLeast, count}; }
constexpr CountRule orOff(std::size_t count) { return {CountRule::Kind::exactlyOrOff, count}; }

// clang-format off
constexpr CommandRow kTable[] = {
    // word, parameters, what it does, what comes before the parameters are counted, what a wrong count switches off
    {u"RenderTask", exactly(1), renderTask},
    {u"CurrentTask", exactly(1), currentTask},
    {u"StartJob", exactly(2), startJob},
    {u"EndJob", any, endJob},
    {u"SlaveFolders", exactly(2), setSlaveFolders},
    {u"TempFolder", exactly(1), setTempFolder},
    {u"FrameNumberBase", exactly(1), setFrameNumberBase},
    {u"RegionRendering", exactly(6), setRegion, setFlag<&S::regionRendering>},
    {u"UseJpegOutput", orOff(1), setJpegOutput, nullptr, setFlag<&S::useJpegOutput, false>},
    {u"FailOnBlackFrames", orOff(2), setBlackFrameCheck, nullptr, setFlag<&S::failOnBlackFrames, false>},
    {u"BlackFramesCheckRenderElements", any, setFlag<&S::blackFramesCheckRenderElements>},
    {u"DisableAltOutput", any, setFlag<&S::useAltOutput, false>},
    {u"ExecuteMaxScriptFile", atLeast(4), executeMaxScriptFile},
    {u"ExecuteStringScript", atLeast(2), executeStringScript},
    {u"OverrideSaveFile", orOff(1), overrideSaveFile, announceSaveFileOverride, dropSaveFileOverride},
    {u"OutputImageFilename", orOff(1), setOutputFilename, announceOutputFilename,
     setFlag<&S::useOutputImageFilename, false>},
    {u"OutputImageReFilename", orOff(2), setElementFilename, nullptr, setFlag<&S::useRenderElementFilenames, false>},
    {u"GammaCorrection", orOff(2), setGamma, nullptr, setFlag<&S::gammaCorrection, false>},
    {u"PathConfigFile", orOff(1), setPathConfigFile, announcePathConfigFile, setFlag<&S::usePathConfigFile, false>},
    {u"IgnoreRenderElementsByName", any, ignoreElementsByName},
    {u"MergePathConfigFile", any, setFlag<&S::mergePathConfigFile>},
    {u"LocalRendering", any, setFlag<&S::localRendering>},
    {u"RestartRendererMode", any, setFlag<&S::restartRendererMode>},
    {u"HideFrameBuffer", any, setFlag<&S::showFrameBuffer, false>},
    {u"IgnoreMissingExternalFiles", any, setFlag<&S::ignoreMissingExternalFiles>},
    {u"IgnoreMissingUVWs", any, setFlag<&S::ignoreMissingUVWs>},
    {u"IgnoreMissingDLLs", any, setFlag<&S::ignoreMissingDLLs>},
    {u"IgnoreMissingXREFs", any, setFlag<&S::ignoreMissingXREFs>},
    {u"DisableMultipass", any, setFlag<&S::disableMultipass>},
    {u"RemovePadding", any, setFlag<&S::removePadding>},
    {u"IgnoreRenderElements", any, setFlag<&S::saveRenderElements, false>},
    {u"CONTINUE", any, ignoreContinue},
};
// clang-format on

}  // namespace

std::span<const CommandRow> commandTable() { return kTable; }

}  // namespace corvantis
