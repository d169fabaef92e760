// Every settings command through the socket: what it stores, logs and replies.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <type_traits>

#include "daemon_fixture.h"

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
  std::string line;
  std::string reply;  // empty: none
  Log log;
  std::vector<Check> checks;
};

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
      check({{flag.word + parameters, "", {}, {is(flag.flag, flag.value)}}},
            [&](S& settings) { settings.*flag.flag = !flag.value; });
}

TEST_F(SettingsCommands, AnotherNumberOfParametersSwitchesOff) {
  const struct {
    std::string line, logged;
    bool S::*flag;
    std::string announced;
  } switches[] = {
      {"UseJpegOutput", "UseJpegOutput: requires 1 parameters, got 0", &S::useJpegOutput, ""},
      {"UseJpegOutput,a,b", "UseJpegOutput: requires 1 parameters, got 2", &S::useJpegOutput, ""},
      {"FailOnBlackFrames,40", "FailOnBlackFrames: requires 2 parameters, got 1", &S::failOnBlackFrames, ""},
      {"OverrideSaveFile,1,1", "OverrideSaveFile: requires 1 parameters, got 2", &S::overrideSaveFile,
       "Overriding save file option"},
      {"OverrideSaveFile", "OverrideSaveFile: requires 1 parameters, got 0", &S::overrideSaveFileValue,
       "Overriding save file option"},
      {"OutputImageFilename", "OutputImageFilename: requires 1 parameters, got 0", &S::useOutputImageFilename,
       "Setting output image filename"},
      {"OutputImageReFilename,0", "OutputImageReFilename: requires 2 parameters, got 1", &S::useRenderElementFilenames,
       ""},
      {"GammaCorrection,1", "GammaCorrection: requires 2 parameters, got 1", &S::gammaCorrection, ""},
      {"PathConfigFile", "PathConfigFile: requires 1 parameters, got 0", &S::usePathConfigFile,
       "Setting alternate path config file"},
  };
  for (const auto& s : switches) {
    Log lines = {s.logged + ", setting to false"};
    if (!s.announced.empty()) lines.insert(lines.begin(), s.announced);
    check({{s.line, "", lines, {is(s.flag, false), is(&S::outputImageFilename, u"kept")}}}, [&](S& settings) {
      settings.*s.flag = true;
      settings.outputImageFilename = u"kept";
    });
  }
}

TEST_F(SettingsCommands, StoreTheirValues) {
  const auto invalidBase = [](const std::string& given) {
    return Case{"FrameNumberBase," + given,
                "ERROR: FrameNumberBase: Parameter 1, \"" + given + "\", is not a valid value for frame number base.",
                {},
                {is(&S::frameNumberBase, 0)}};
  };
  const auto gamma = [](bool on, float in, float out) {
    return std::vector<Check>{is(&S::gammaCorrection, on), is(&S::gammaIn, in), is(&S::gammaOut, out)};
  };
  check({
      {"SlaveFolders,C:/jobs/1,\\\\\\\\srv\\\\plug/ins",
       "",
       {},
       {is(&S::jobsDataFolder, u"C:\\jobs\\1"), is(&S::pluginsFolder, u"\\\\srv\\plug\\ins")}},
      {"TempFolder,D:/temp/", "", {}, {is(&S::tempFolder, u"D:\\temp\\")}},
      {"TempFolder,\u00fc\u4e2d", "", {}, {is(&S::tempFolder, u"\u00fc\u4e2d")}},
      {"FrameNumberBase,1000", "", {}, {is(&S::frameNumberBase, 1000)}},
      {"FrameNumberBase,-2147483648", "", {}, {is(&S::frameNumberBase, -2147483648)}},
      {"FrameNumberBase,+5", "", {}, {is(&S::frameNumberBase, 5)}},
      invalidBase("2147483648"),
      invalidBase(" 1"),
      invalidBase("1.0"),
      invalidBase(""),
      {"UseJpegOutput,C:/a.jpg", "", {}, {is(&S::useJpegOutput, true), is(&S::jpegOutputPath, u"C:/a.jpg")}},
      {"OutputImageFilename,C:/out/\u00e4.exr",
       "",
       {"Setting output image filename", "Saving output to C:/out/\xe4.exr"},
       {is(&S::useOutputImageFilename, true), is(&S::outputImageFilename, u"C:/out/\u00e4.exr")}},
      {"PathConfigFile,C:/paths.mxp",
       "",
       {"Setting alternate path config file", "Using alternate path config file C:/paths.mxp"},
       {is(&S::usePathConfigFile, true), is(&S::pathConfigFile, u"C:/paths.mxp")}},
      {"GammaCorrection,2.2,1e-7",
       "",
       {"Enabling gamma correction", "Gamma in: 2.2", "Gamma out: 1e-07"},
       gamma(true, 2.2F, 1e-7F)},
      {"GammaCorrection,2.2,x",
       "ERROR: GammaCorrection: Parameter 2, \"x\", is not a valid gamma value.",
       {},
       gamma(false, 2.2F, 1.0F)},
      {"GammaCorrection,2.2 ,3",
       "ERROR: GammaCorrection: Parameter 1, \"2.2 \", is not a valid gamma value.",
       {},
       gamma(false, 1.0F, 1.0F)},
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
      {"FailOnBlackFrames,150,0.5", "", {}, holds(true, 100, 0.5F)},
      {"FailOnBlackFrames,-3,2", "", {}, holds(true, 0, 1.0F)},
      {"FailOnBlackFrames,40,-1e3", "", {}, holds(true, 40, 0.0F)},
      {"FailOnBlackFrames,40,inf", "", {}, holds(true, 40, 1.0F)},
      {"FailOnBlackFrames,40,NaN", "", {}, {[](const S& s) { return std::isnan(s.blackPixelThreshold); }}},
      {"FailOnBlackFrames,abc,0.5", "", {percentage}, holds(false, 0, 0.5F)},
      {"FailOnBlackFrames,40,x", "", {threshold}, holds(false, 40, 0.0F)},
      {"FailOnBlackFrames,abc,x", "", {percentage, threshold}, holds(false, 0, 0.0F)},
  });
}

TEST_F(SettingsCommands, OverrideSaveFileTakesABoolean) {
  const auto holds = [](bool value) {
    return std::vector<Check>{is(&S::overrideSaveFile, true), is(&S::overrideSaveFileValue, value)};
  };
  const std::string first = "Overriding save file option";
  check({{"OverrideSaveFile,1", "", {first, first + " to 1"}, holds(true)},
         {"OverrideSaveFile,0", "", {first, first + " to 0"}, holds(false)},
         {"OverrideSaveFile,+01", "", {first, first + " to 1"}, holds(true)}});

  // Anything else ends the conversation.
  startAfresh();
  worker->handshake("token").send("OverrideSaveFile,true");
  worker->expect(
      "ERROR: Exception caught in 3ds max: bad lexical cast: source type value could not be interpreted as target");
  EXPECT_FALSE(run());
  EXPECT_TRUE(holds(false)[0](job->settings) && holds(false)[1](job->settings));
}

TEST_F(SettingsCommands, NamesOfElements) {
  const auto named = [](const std::string& index, const Names& names) {
    return Case{"OutputImageReFilename," + index + ",z.exr",
                "",
                {"Saving render element " + index + " output to z.exr"},
                {is(&S::useRenderElementFilenames, true), is(&S::renderElementFilenames, names)}};
  };
  check(
      {
          named("0", {u"z.exr", u"b"}),
          named("1", {u"a", u"z.exr"}),
          named("5", {u"a", u"b", u"z.exr"}),
          named("-1", {u"a", u"b", u"z.exr"}),
          {"OutputImageReFilename,x,z.exr",
           "ERROR: OutputImageReFilename: Parameter 1 , \"x\", is not a valid index.",
           {},
           {is(&S::useRenderElementFilenames, false), is(&S::renderElementFilenames, {u"a", u"b"})}},
          {"IgnoreRenderElementsByName,Z,Z,\"a,b\",",
           "",
           {},
           {is(&S::ignoredRenderElementNames, {u"old", u"Z", u"Z", u"a,b", u""})}},
          {"IgnoreRenderElementsByName",
           "",
           {"IgnoreRenderElementsByName: did not specify any render elements to skip"},
           {is(&S::ignoredRenderElementNames, {u"old"})}},
      },
      [](S& settings) {
        settings.renderElementFilenames = {u"a", u"b"};
        settings.ignoredRenderElementNames = {u"old"};
      });
}

}  // namespace
}  // namespace corvantis
