#include "plugin/daemon/commands.h"

#include <algorithm>

#include "plugin/daemon/reply.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

JobSettings& settingsOf(const CommandCall& call) { return call.jobState.settings; }

std::u16string withBackslashes(const std::u16string& path) { return replace_all(path, u"/", u"\\"); }

void replyInvalid(const CommandCall& call, const char16_t* parameter, const std::u16string& given,
                  const char16_t* what) {
  sendReply(call.socket, u"ERROR: " + std::u16string(call.word) + u": " + parameter + u", \"" + given +
                             u"\", is not a valid " + what + u".");
}

}  // namespace

void setSlaveFolders(const CommandCall& call) {
  settingsOf(call).jobsDataFolder = withBackslashes(call.parameters[0]);
  settingsOf(call).pluginsFolder = withBackslashes(call.parameters[1]);
}

void setTempFolder(const CommandCall& call) { settingsOf(call).tempFolder = withBackslashes(call.parameters[0]); }

void setFrameNumberBase(const CommandCall& call) {
  const std::optional<std::int32_t> base = integerIn(call.parameters[0]);
  if (!base) return replyInvalid(call, u"Parameter 1", call.parameters[0], u"value for frame number base");
  settingsOf(call).frameNumberBase = *base;
}

void setJpegOutput(const CommandCall& call) {
  settingsOf(call).useJpegOutput = true;
  settingsOf(call).jpegOutputPath = call.parameters[0];
}

void setBlackFrameCheck(const CommandCall& call) {
  JobSettings& settings = settingsOf(call);
  settings.failOnBlackFrames = true;
  const auto refuse = [&](const char* parameter, const std::u16string& given, const char* what) {
    log_file << "FailOnBlackFrames: " << parameter << ", \"" << given << "\", is not a valid " << what << "."
             << LogFile::endl;
    settings.failOnBlackFrames = false;
  };
  if (const std::optional<std::int32_t> percentage = integerIn(call.parameters[0]))
    settings.blackPixelPercentage = std::clamp(*percentage, 0, 100);
  else
    refuse("Parameter 1", call.parameters[0], "percentage");
  // A threshold that is not a number stays one: no pixel is darker.
  if (const std::optional<float> threshold = floatIn(call.parameters[1]))
    settings.blackPixelThreshold = *threshold < 0.0F ? 0.0F : *threshold > 1.0F ? 1.0F : *threshold;
  else
    refuse("Parameter 2", call.parameters[1], "threshold");
}

void announceSaveFileOverride(const CommandCall&) { log_file << "Overriding save file option" << LogFile::endl; }

void overrideSaveFile(const CommandCall& call) {
  JobSettings& settings = settingsOf(call);
  settings.overrideSaveFile = true;
  settings.overrideSaveFileValue = parse_bool(call.parameters[0]);
  log_file << "Overriding save file option to " << settings.overrideSaveFileValue << LogFile::endl;
}

void dropSaveFileOverride(const CommandCall& call) {
  settingsOf(call).overrideSaveFile = false;
  settingsOf(call).overrideSaveFileValue = false;
}

void announceOutputFilename(const CommandCall&) { log_file << "Setting output image filename" << LogFile::endl; }

void setOutputFilename(const CommandCall& call) {
  settingsOf(call).useOutputImageFilename = true;
  settingsOf(call).outputImageFilename = call.parameters[0];
  log_file << "Saving output to " << call.parameters[0] << LogFile::endl;
}

void setElementFilename(const CommandCall& call) {
  const std::optional<std::int32_t> index = integerIn(call.parameters[0]);
  if (!index) return replyInvalid(call, u"Parameter 1 ", call.parameters[0], u"index");
  std::vector<std::u16string>& filenames = settingsOf(call).renderElementFilenames;
  // A negative index is past every end.
  if (*index >= 0 && static_cast<std::size_t>(*index) < filenames.size())
    filenames[static_cast<std::size_t>(*index)] = call.parameters[1];
  else
    filenames.push_back(call.parameters[1]);
  settingsOf(call).useRenderElementFilenames = true;
  log_file << "Saving render element " << *index << " output to " << call.parameters[1] << LogFile::endl;
}

void setGamma(const CommandCall& call) {
  JobSettings& settings = settingsOf(call);
  const std::optional<float> in = floatIn(call.parameters[0]);
  if (!in) return replyInvalid(call, u"Parameter 1", call.parameters[0], u"gamma value");
  settings.gammaIn = *in;
  const std::optional<float> out = floatIn(call.parameters[1]);
  if (!out) return replyInvalid(call, u"Parameter 2", call.parameters[1], u"gamma value");
  settings.gammaOut = *out;
  settings.gammaCorrection = true;
  log_file << "Enabling gamma correction" << LogFile::endl;
  log_file << "Gamma in: " << settings.gammaIn << LogFile::endl;
  log_file << "Gamma out: " << settings.gammaOut << LogFile::endl;
}

void announcePathConfigFile(const CommandCall&) { log_file << "Setting alternate path config file" << LogFile::endl; }

void setPathConfigFile(const CommandCall& call) {
  settingsOf(call).usePathConfigFile = true;
  settingsOf(call).pathConfigFile = call.parameters[0];
  log_file << "Using alternate path config file " << call.parameters[0] << LogFile::endl;
}

void ignoreElementsByName(const CommandCall& call) {
  if (call.parameters.empty())
    log_file << "IgnoreRenderElementsByName: did not specify any render elements to skip" << LogFile::endl;
  std::vector<std::u16string>& names = settingsOf(call).ignoredRenderElementNames;
  names.insert(names.end(), call.parameters.begin(), call.parameters.end());
}

}  // namespace corvantis
