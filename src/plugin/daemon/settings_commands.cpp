// The settings commands that a row of the table alone cannot tell.
#include <algorithm>

#include "plugin/daemon/commands.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

// nullopt after an error reply.
std::optional<float> gammaIn(const CommandCall& call, std::size_t index) {
  const std::optional<float> gamma = floatIn(call.parameters[index]);
  if (!gamma) replyError(call, invalidParameter(call, index, u"a valid gamma value"));
  return gamma;
}

}  // namespace

void setBlackFrameCheck(const CommandCall& call) {
  JobSettings& settings = call.job.settings;
  settings.failOnBlackFrames = true;
  const auto refuse = [&](std::size_t index, const std::u16string& what) {
    log_file << "FailOnBlackFrames: " << invalidParameter(call, index, what) << LogFile::endl;
    settings.failOnBlackFrames = false;
  };
  if (const std::optional<std::int32_t> percentage = integerIn(call.parameters[0]))
    settings.blackPixelPercentage = std::clamp(*percentage, 0, 100);
  else
    refuse(0, u"a valid percentage");
  // A threshold that is not a number stays one: no pixel is darker.
  if (const std::optional<float> threshold = floatIn(call.parameters[1]))
    settings.blackPixelThreshold = *threshold < 0.0F ? 0.0F : *threshold > 1.0F ? 1.0F : *threshold;
  else
    refuse(1, u"a valid threshold");
}

void overrideSaveFile(const CommandCall& call) {
  JobSettings& settings = call.job.settings;
  settings.overrideSaveFile = true;
  settings.overrideSaveFileValue = parse_bool(call.parameters[0]);
  log_file << "Overriding save file option to " << settings.overrideSaveFileValue << LogFile::endl;
}

void setElementFilename(const CommandCall& call) {
  const std::optional<std::int32_t> index = integerIn(call.parameters[0]);
  if (!index) return replyError(call, invalidParameter(call, 0, u"a valid index", BeforeComma::blank));
  std::vector<std::u16string>& filenames = call.job.settings.renderElementFilenames;
  // A negative index is past every end.
  if (*index >= 0 && static_cast<std::size_t>(*index) < filenames.size())
    filenames[static_cast<std::size_t>(*index)] = call.parameters[1];
  else
    filenames.push_back(call.parameters[1]);
  call.job.settings.useRenderElementFilenames = true;
  log_file << "Saving render element " << *index << " output to " << call.parameters[1] << LogFile::endl;
}

void setGamma(const CommandCall& call) {
  JobSettings& settings = call.job.settings;
  const std::optional<float> in = gammaIn(call, 0);
  if (!in) return;
  settings.gammaIn = *in;
  const std::optional<float> out = gammaIn(call, 1);
  if (!out) return;
  settings.gammaOut = *out;
  settings.gammaCorrection = true;
  log_file << "Enabling gamma correction" << LogFile::endl;
  log_file << "Gamma in: " << settings.gammaIn << LogFile::endl;
  log_file << "Gamma out: " << settings.gammaOut << LogFile::endl;
}

void ignoreElementsByName(const CommandCall& call) {
  if (call.parameters.empty())
    log_file << "IgnoreRenderElementsByName: did not specify any render elements to skip" << LogFile::endl;
  std::vector<std::u16string>& names = call.job.settings.ignoredRenderElementNames;
  names.insert(names.end(), call.parameters.begin(), call.parameters.end());
}

}  // namespace corvantis
