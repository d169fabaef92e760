// Every settings command through the socket: what it stores, logs and replies.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <type_traits>

#include "support/daemon_fixture.h"

namespace corvantis {
namespace {

using S = JobSettings;
using Names = std::vector<std::u16string>;
using Log = std::vector<std::string>;
using Check = std::function<bool(const S&)>;

template <class Field, class Group>
Check is(Field Group::*field, const std::type_identity_t<Field>& value) {
  return [=](const S& s) { return s.*field == value; };
}

struct Case {
  std::string line, reply;
  Log log;
  std::vector<Check> checks;
};

// A line that is carried out, and one that is refused with this text after its word.
Case stored(const std::string& line, std::vector<Check> checks, Log log = {}) { return {line, "", log, checks}; }
Case refused(const std::string& line, const std::string& text, std::vector<Check> checks) {
  return {line, "ERROR: " + line.substr(0, line.find(',')) + ": Parameter " + text, {}, checks};
}

class SettingsCommands : public DaemonTest {
 protected:
  // Each case on a plug-in as it is at load, after `prepare`.
  void check(
      const std::vector<Case>& cases, const std::function<void(S&)>& prepare = [](S&) {}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(c.line);
      startAfresh();
      prepare(job->settings);
      EXPECT_TRUE(runLine(c.line, c.reply.empty() ? Log() : Log{c.reply}));
      EXPECT_EQ(logOfCommand(), c.log);
      for (std::size_t i = 0; i < c.checks.size(); ++i) EXPECT_TRUE(c.checks[i](job->settings)) << "check " << i;
    }
  }
};

TEST_F(SettingsCommands, FlagsAreSetWhateverFollows) {
  const struct {
    std::string word;
    bool S::*flag;
    bool value;
  } flags[] = {
      {"BlackFramesCheckRenderElements", &S::blackFramesCheckRenderElements, true},
      {"DisableAltOutput", &S::useAltOutput, false},
      {"MergePathConfigFile", &S::mergePathConfigFile, true},
      {"LocalRendering", &S::localRendering, true},
      {"RestartRendererMode", &S::restartRendererMode, true},
      {"HideFrameBuffer", &S::showFrameBuffer, false},
      {"IgnoreMissingExternalFiles", &S::ignoreMissingExternalFiles, true},
      {"IgnoreMissingUVWs", &S::ignoreMissingUVWs, true},
      {"IgnoreMissingDLLs", &S::ignoreMissingDLLs, true},
      {"IgnoreMissingXREFs", &S::ignoreMissingXREFs, true},
      {"DisableMultipass", &S::disableMultipass, true},
      {"RemovePadding", &S::removePadding, true},
      {"IgnoreRenderElements", &S::saveRenderElements, false},
  };
  for (const auto& flag : flags)
    for (const char* parameters : {"", ",", ",false,0"})
      check({stored(flag.word + parameters, {is(flag.flag, flag.value)})},
            [&](S& settings) { settings.*flag.flag = !flag.value; });
}

TEST_F(SettingsCommands, AnotherNumberOfParametersSwitchesOff) {
  const std::string override = "Overriding save file option";
  const struct {
    std::string line, required;
    bool S::*flag;
    std::string announced;
  } switches[] = {
      {"UseJpegOutput", "1 parameters, got 0", &S::useJpegOutput, ""},
      {"UseJpegOutput,a,b", "1 parameters, got 2", &S::useJpegOutput, ""},
      {"FailOnBlackFrames,40", "2 parameters, got 1", &S::failOnBlackFrames, ""},
      {"OverrideSaveFile,1,1", "1 parameters, got 2", &S::overrideSaveFile, override},
      {"OverrideSaveFile", "1 parameters, got 0", &S::overrideSaveFileValue, override},
      {"OutputImageFilename", "1 parameters, got 0", &S::useOutputImageFilename, "Setting output image filename"},
      {"OutputImageReFilename,0", "2 parameters, got 1", &S::useRenderElementFilenames, ""},
      {"GammaCorrection,1", "2 parameters, got 1", &S::gammaCorrection, ""},
      {"PathConfigFile", "1 parameters, got 0", &S::usePathConfigFile, "Setting alternate path config file"},
  };
  for (const auto& s : switches) {
    Log lines = {s.line.substr(0, s.line.find(',')) + ": requires " + s.required + ", setting to false"};
    if (!s.announced.empty()) lines.insert(lines.begin(), s.announced);
    check({stored(s.line, {is(s.flag, false), is(&S::outputImageFilename, u"kept")}, lines)}, [&](S& settings) {
      settings.*s.flag = true;
      settings.outputImageFilename = u"kept";
    });
  }
}

TEST_F(SettingsCommands, StoreTheirValues) {
  const auto noBase = [](const std::string& given) {
    return refused("FrameNumberBase," + given, "1, \"" + given + "\", is not a valid value for frame number base.",
                   {is(&S::frameNumberBase, 0)});
  };
  const auto gamma = [](bool on, float in, float out) {
    return std::vector<Check>{is(&S::gammaCorrection, on), is(&S::gammaIn, in), is(&S::gammaOut, out)};
  };
  check({
      stored("SlaveFolders,C:/jobs/1,\\\\\\\\srv\\\\plug/ins",
             {is(&S::jobsDataFolder, u"C:\\jobs\\1"), is(&S::pluginsFolder, u"\\\\srv\\plug\\ins")}),
      stored("TempFolder,D:/\u00fc\u4e2d/", {is(&S::tempFolder, u"D:\\\u00fc\u4e2d\\")}),
      stored("FrameNumberBase,1000", {is(&S::frameNumberBase, 1000)}),
      stored("FrameNumberBase,-2147483648", {is(&S::frameNumberBase, -2147483648)}),
      noBase("2147483648"),
      noBase("1.0"),
      noBase(""),
      stored("UseJpegOutput,C:/a.jpg", {is(&S::useJpegOutput, true), is(&S::jpegOutputPath, u"C:/a.jpg")}),
      stored("OutputImageFilename,C:/out/\u00e4.exr",
             {is(&S::useOutputImageFilename, true), is(&S::outputImageFilename, u"C:/out/\u00e4.exr")},
             {"Setting output image filename", "Saving output to C:/out/\xe4.exr"}),
      stored("PathConfigFile,C:/paths.mxp", {is(&S::usePathConfigFile, true), is(&S::pathConfigFile, u"C:/paths.mxp")},
             {"Setting alternate path config file", "Using alternate path config file C:/paths.mxp"}),
      stored("GammaCorrection,2.2,1e-7", gamma(true, 2.2F, 1e-7F),
             {"Enabling gamma correction", "Gamma in: 2.2", "Gamma out: 1e-07"}),
      refused("GammaCorrection,2.2,x", "2, \"x\", is not a valid gamma value.", gamma(false, 2.2F, 1.0F)),
      refused("GammaCorrection,2.2 ,3", "1, \"2.2 \", is not a valid gamma value.", gamma(false, 1.0F, 1.0F)),
  });
}

TEST_F(SettingsCommands, FailOnBlackFrames) {
  const auto holds = [](bool on, std::int32_t percentage, float threshold) {
    return std::vector<Check>{is(&S::failOnBlackFrames, on), is(&S::blackPixelPercentage, percentage),
                              is(&S::blackPixelThreshold, threshold)};
  };
  const std::string percentage = "FailOnBlackFrames: Parameter 1, \"abc\", is not a valid percentage.";
  const std::string threshold = "FailOnBlackFrames: Parameter 2, \"x\", is not a valid threshold.";
  check({
      stored("FailOnBlackFrames,150,0.5", holds(true, 100, 0.5F)),
      stored("FailOnBlackFrames,-3,2", holds(true, 0, 1.0F)),
      stored("FailOnBlackFrames,40,-1e3", holds(true, 40, 0.0F)),
      stored("FailOnBlackFrames,40,inf", holds(true, 40, 1.0F)),
      stored("FailOnBlackFrames,40,NaN", {[](const S& s) { return std::isnan(s.blackPixelThreshold); }}),
      stored("FailOnBlackFrames,abc,0.5", holds(false, 0, 0.5F), {percentage}),
      stored("FailOnBlackFrames,40,x", holds(false, 40, 0.0F), {threshold}),
      stored("FailOnBlackFrames,abc,x", holds(false, 0, 0.0F), {percentage, threshold}),
  });
}

TEST_F(SettingsCommands, OverrideSaveFileTakesABoolean) {
  const auto holds = [](bool value) {
    return std::vector<Check>{is(&S::overrideSaveFile, true), is(&S::overrideSaveFileValue, value)};
  };
  const std::string first = "Overriding save file option";
  check({stored("OverrideSaveFile,1", holds(true), {first, first + " to 1"}),
         stored("OverrideSaveFile,0", holds(false), {first, first + " to 0"})});

  // Anything else ends the conversation, with the override in force.
  startAfresh();
  worker->handshake("token").send("OverrideSaveFile,true");
  worker->expect(
      "ERROR: Exception caught in 3ds max: bad lexical cast: source type value could not be interpreted as target");
  EXPECT_FALSE(run());
  EXPECT_TRUE(job->settings.overrideSaveFile && !job->settings.overrideSaveFileValue);
}

TEST_F(SettingsCommands, NamesOfElements) {
  const auto named = [](const std::string& index, const Names& names) {
    return stored("OutputImageReFilename," + index + ",z.exr",
                  {is(&S::useRenderElementFilenames, true), is(&S::renderElementFilenames, names)},
                  {"Saving render element " + index + " output to z.exr"});
  };
  check(
      {
          named("0", {u"z.exr", u"b"}),
          named("1", {u"a", u"z.exr"}),
          named("5", {u"a", u"b", u"z.exr"}),
          named("-1", {u"a", u"b", u"z.exr"}),
          refused("OutputImageReFilename,x,z.exr", "1 , \"x\", is not a valid index.",
                  {is(&S::useRenderElementFilenames, false), is(&S::renderElementFilenames, {u"a", u"b"})}),
          stored("IgnoreRenderElementsByName,Z,Z,\"a,b\",",
                 {is(&S::ignoredRenderElementNames, {u"old", u"Z", u"Z", u"a,b", u""})}),
          stored("IgnoreRenderElementsByName", {is(&S::ignoredRenderElementNames, {u"old"})},
                 {"IgnoreRenderElementsByName: did not specify any render elements to skip"}),
      },
      [](S& settings) {
        settings.renderElementFilenames = {u"a", u"b"};
        settings.ignoredRenderElementNames = {u"old"};
      });
}

}  // namespace
}  // namespace corvantis
