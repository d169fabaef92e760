// The words of the conversation between plug-in and worker, all in ASCII. What each means, and which parameters the
// commands take, is told by docs/protocol.md.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace protocol {

// The opening: the worker's answer to the token, and what the plug-in's version follows.
inline constexpr std::string_view kStartup = "TessarynStartup";
inline constexpr std::string_view kIdentification = "Corvantis ";

// Beginnings of replies and of answers to questions. A success that carries a value has a colon.
inline constexpr std::string_view kStarted = "STARTED";
inline constexpr std::string_view kSuccess = "SUCCESS";
inline constexpr std::string_view kSuccessWith = "SUCCESS: ";
inline constexpr std::string_view kError = "ERROR: ";
// Whole texts: what closes a StartJob, and an error's text that closes a failed RenderTask.
inline constexpr std::string_view kSceneLoaded = "SUCCESS Scene loaded successfully";
inline constexpr std::string_view kNotSaved = "Failed to save file.";

namespace command {

// The job.
inline constexpr std::string_view kRenderTask = "RenderTask";
inline constexpr std::string_view kCurrentTask = "CurrentTask";
inline constexpr std::string_view kStartJob = "StartJob";
inline constexpr std::string_view kEndJob = "EndJob";
inline constexpr std::string_view kContinue = "CONTINUE";

// Scripts.
inline constexpr std::string_view kExecuteMaxScriptFile = "ExecuteMaxScriptFile";
inline constexpr std::string_view kExecuteStringScript = "ExecuteStringScript";

// Settings that matter while the scene is opened.
inline constexpr std::string_view kSlaveFolders = "SlaveFolders";
inline constexpr std::string_view kTempFolder = "TempFolder";
inline constexpr std::string_view kGammaCorrection = "GammaCorrection";
inline constexpr std::string_view kPathConfigFile = "PathConfigFile";
inline constexpr std::string_view kMergePathConfigFile = "MergePathConfigFile";
inline constexpr std::string_view kIgnoreMissingExternalFiles = "IgnoreMissingExternalFiles";
inline constexpr std::string_view kIgnoreMissingUvws = "IgnoreMissingUVWs";
inline constexpr std::string_view kIgnoreMissingDlls = "IgnoreMissingDLLs";
inline constexpr std::string_view kIgnoreMissingXrefs = "IgnoreMissingXREFs";

// The other settings.
inline constexpr std::string_view kFrameNumberBase = "FrameNumberBase";
inline constexpr std::string_view kRemovePadding = "RemovePadding";
inline constexpr std::string_view kOutputImageFilename = "OutputImageFilename";
inline constexpr std::string_view kOutputImageReFilename = "OutputImageReFilename";
inline constexpr std::string_view kOverrideSaveFile = "OverrideSaveFile";
inline constexpr std::string_view kLocalRendering = "LocalRendering";
inline constexpr std::string_view kDisableAltOutput = "DisableAltOutput";
inline constexpr std::string_view kUseJpegOutput = "UseJpegOutput";
inline constexpr std::string_view kRegionRendering = "RegionRendering";
inline constexpr std::string_view kFailOnBlackFrames = "FailOnBlackFrames";
inline constexpr std::string_view kBlackFramesCheckRenderElements = "BlackFramesCheckRenderElements";
inline constexpr std::string_view kRestartRendererMode = "RestartRendererMode";
inline constexpr std::string_view kHideFrameBuffer = "HideFrameBuffer";
inline constexpr std::string_view kDisableMultipass = "DisableMultipass";
inline constexpr std::string_view kIgnoreRenderElements = "IgnoreRenderElements";
inline constexpr std::string_view kIgnoreRenderElementsByName = "IgnoreRenderElementsByName";

// StartJob keeps these and uses them, so they are sent before it; what it resets is sent after it.
inline constexpr std::array kBeforeStartJob{kSlaveFolders,      kTempFolder,          kGammaCorrection,
                                            kPathConfigFile,    kMergePathConfigFile, kIgnoreMissingExternalFiles,
                                            kIgnoreMissingUvws, kIgnoreMissingDlls,   kIgnoreMissingXrefs};

constexpr bool precedesStartJob(std::string_view word) {
  return std::find(kBeforeStartJob.begin(), kBeforeStartJob.end(), word) != kBeforeStartJob.end();
}

}  // namespace command

// What the plug-in says and asks while it carries out a command: kFunction, one of the words below, the text or
// argument.
inline constexpr std::string_view kFunction = "FUNCTION: ";

namespace notice {

inline constexpr std::string_view kStdout = "STDOUT: ";
inline constexpr std::string_view kWarn = "WARN: ";
inline constexpr std::string_view kSetTitle = "SETTITLE ";
inline constexpr std::string_view kProgress = "PROGRESS ";
// A percentage that stands for work that cannot be measured.
inline constexpr float kUnmeasured = -1;

// Begins the text of the lines and warnings that are the plug-in's own, and that alone.
inline constexpr std::string_view kOwn = "MaxCorvantis: ";
// Beginnings of own lines that tell what becomes of files; a path follows, after the last a path in quotes.
inline constexpr std::string_view kWriting = "Writing to output file: ";
inline constexpr std::string_view kMoved = "Saved image to ";
inline constexpr std::string_view kSkipping = "Skipping frame ";

}  // namespace notice

// An argument follows each after a blank.
namespace question {

inline constexpr std::string_view kJobInfoEntry = "GETJOBINFOENTRY";
inline constexpr std::string_view kSubmitInfoEntry = "GETSUBMITINFOENTRY";
inline constexpr std::string_view kSubmitInfoEntryElementCount = "GETSUBMITINFOENTRYELEMENTCOUNT";
inline constexpr std::string_view kSubmitInfoEntryElement = "GETSUBMITINFOENTRYELEMENT";
inline constexpr std::string_view kAuxFile = "GETAUXFILE";
inline constexpr std::string_view kPathMappedFilename = "GETPATHMAPPEDFILENAME";

inline constexpr std::array kAll{kJobInfoEntry,           kSubmitInfoEntry, kSubmitInfoEntryElementCount,
                                 kSubmitInfoEntryElement, kAuxFile,         kPathMappedFilename};

}  // namespace question

}  // namespace protocol
