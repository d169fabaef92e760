// Every settings command through the socket: what it stores, logs and replies.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "daemon_fixture.h"

namespace corvantis {
namespace {

using Log = std::vector<std::string>;

struct Case {
  std::string line;
  std::vector<std::string> replies;
  Log log;
  std::function<bool(const JobSettings&)> holds;
};

class SettingsCommands : public DaemonTest {
 protected:
  // Each case on a plug-in as it is at load, after `prepare`.
  void check(
      const std::vector<Case>& cases, const std::function<void(JobSettings&)>& prepare = [](JobSettings&) {}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(c.line);
      startAfresh();
      prepare(job->settings);
      EXPECT_TRUE(runLine(c.line, c.replies));
      EXPECT_EQ(logOfCommand(), c.log);
      EXPECT_TRUE(c.holds(job->settings));
    }
  }
};

using S = JobSettings;

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
      check({{flag.word + parameters, {}, {}, [&](const S& s) { return s.*flag.flag == flag.value; }}},
            [&](S& settings) { settings.*flag.flag = !flag.value; });
}

TEST_F(SettingsCommands, Folders) {
  check({
      {"SlaveFolders,C:/jobs/1,\\\\\\\\srv\\\\plug/ins",
       {},
       {},
       [](const S& s) { return s.jobsDataFolder == u"C:\\jobs\\1" && s.pluginsFolder == u"\\\\srv\\plug\\ins"; }},
      {"SlaveFolders",
       {"ERROR: SlaveFolders: Expected 2 parameters, got 0"},
       {},
       [](const S& s) { return s.jobsDataFolder.empty(); }},
      {"SlaveFolders,a,b,c",
       {"ERROR: SlaveFolders: Expected 2 parameters, got 3"},
       {},
       [](const S& s) { return s.jobsDataFolder.empty(); }},
      {"TempFolder,D:/temp/", {}, {}, [](const S& s) { return s.tempFolder == u"D:\\temp\\"; }},
      {"TempFolder,\u00fc\u4e2d", {}, {}, [](const S& s) { return s.tempFolder == u"\u00fc\u4e2d"; }},
      {"TempFolder",
       {"ERROR: TempFolder: Expected 1 parameter, got 0"},
       {},
       [](const S& s) { return s.tempFolder.empty(); }},
      {"TempFolder,a,b",
       {"ERROR: TempFolder: Expected 1 parameter, got 2"},
       {},
       [](const S& s) { return s.tempFolder.empty(); }},
  });
}

TEST_F(SettingsCommands, FrameNumberBase) {
  const auto invalid = [](const std::string& given) {
    return Case{"FrameNumberBase," + given,
                {"ERROR: FrameNumberBase: Parameter 1, \"" + given + "\", is not a valid value for frame number base."},
                {},
                [](const S& s) { return s.frameNumberBase == 0; }};
  };
  check({
      {"FrameNumberBase,1000", {}, {}, [](const S& s) { return s.frameNumberBase == 1000; }},
      {"FrameNumberBase,-2147483648", {}, {}, [](const S& s) { return s.frameNumberBase == -2147483648; }},
      {"FrameNumberBase,+5", {}, {}, [](const S& s) { return s.frameNumberBase == 5; }},
      invalid("2147483648"),
      invalid(" 1"),
      invalid("1.0"),
      invalid(""),
      {"FrameNumberBase",
       {"ERROR: FrameNumberBase: Expected 1 parameter, got 0"},
       {},
       [](const S& s) { return s.frameNumberBase == 0; }},
  });
}

TEST_F(SettingsCommands, JpegOutput) {
  check({{"UseJpegOutput,C:/a.jpg", {}, {}, [](const S& s) {
            return s.useJpegOutput && s.jpegOutputPath == u"C:/a.jpg";
          }}});
  const auto off = [](const S& s) { return !s.useJpegOutput; };
  check({{"UseJpegOutput", {}, {"UseJpegOutput: requires 1 parameters, got 0, setting to false"}, off},
         {"UseJpegOutput,a,b", {}, {"UseJpegOutput: requires 1 parameters, got 2, setting to false"}, off}},
        [](S& settings) { settings.useJpegOutput = true; });
}

TEST_F(SettingsCommands, FailOnBlackFrames) {
  const auto holds = [](bool on, std::int32_t percentage, float threshold) {
    return [=](const S& s) {
      return s.failOnBlackFrames == on && s.blackPixelPercentage == percentage && s.blackPixelThreshold == threshold;
    };
  };
  const std::string percentage = "FailOnBlackFrames: Parameter 1, \"abc\", is not a valid percentage.";
  const std::string threshold = "FailOnBlackFrames: Parameter 2, \"x\", is not a valid threshold.";
  check({
      {"FailOnBlackFrames,150,0.5", {}, {}, holds(true, 100, 0.5F)},
      {"FailOnBlackFrames,-3,2", {}, {}, holds(true, 0, 1.0F)},
      {"FailOnBlackFrames,40,-1e3", {}, {}, holds(true, 40, 0.0F)},
      {"FailOnBlackFrames,40,inf", {}, {}, holds(true, 40, 1.0F)},
      {"FailOnBlackFrames,40,NaN",
       {},
       {},
       [](const S& s) { return s.failOnBlackFrames && std::isnan(s.blackPixelThreshold); }},
      {"FailOnBlackFrames,abc,0.5", {}, {percentage}, holds(false, 0, 0.5F)},
      {"FailOnBlackFrames,40,x", {}, {threshold}, holds(false, 40, 0.0F)},
      {"FailOnBlackFrames,abc,x", {}, {percentage, threshold}, holds(false, 0, 0.0F)},
  });
  check({{"FailOnBlackFrames,40",
          {},
          {"FailOnBlackFrames: requires 2 parameters, got 1, setting to false"},
          holds(false, 0, 0.0F)}},
        [](S& settings) { settings.failOnBlackFrames = true; });
}

TEST_F(SettingsCommands, OverrideSaveFile) {
  const auto holds = [](bool on, bool value) {
    return [=](const S& s) { return s.overrideSaveFile == on && s.overrideSaveFileValue == value; };
  };
  const std::string first = "Overriding save file option";
  check({
      {"OverrideSaveFile,1", {}, {first, "Overriding save file option to 1"}, holds(true, true)},
      {"OverrideSaveFile,0", {}, {first, "Overriding save file option to 0"}, holds(true, false)},
      {"OverrideSaveFile,+01", {}, {first, "Overriding save file option to 1"}, holds(true, true)},
  });
  const Log off = {first, "OverrideSaveFile: requires 1 parameters, got 2, setting to false"};
  check({{"OverrideSaveFile,1,1", {}, off, holds(false, false)}},
        [](S& settings) { settings.overrideSaveFile = settings.overrideSaveFileValue = true; });
}

TEST_F(SettingsCommands, OverrideSaveFileWithoutABooleanEndsTheConversation) {
  worker->handshake("token").send("OverrideSaveFile,true");
  worker->expect(
      "ERROR: Exception caught in 3ds max: bad lexical cast: source type value could not be interpreted as target");
  EXPECT_FALSE(run());
  EXPECT_TRUE(job->settings.overrideSaveFile);
  EXPECT_FALSE(job->settings.overrideSaveFileValue);
}

TEST_F(SettingsCommands, OutputFilenames) {
  const std::string first = "Setting output image filename";
  check({{"OutputImageFilename,C:/out/\u00e4.exr", {}, {first, "Saving output to C:/out/\xe4.exr"}, [](const S& s) {
            return s.useOutputImageFilename && s.outputImageFilename == u"C:/out/\u00e4.exr";
          }}});
  check({{"OutputImageFilename",
          {},
          {first, "OutputImageFilename: requires 1 parameters, got 0, setting to false"},
          [](const S& s) { return !s.useOutputImageFilename && s.outputImageFilename == u"kept"; }}},
        [](S& settings) {
          settings.useOutputImageFilename = true;
          settings.outputImageFilename = u"kept";
        });
}

TEST_F(SettingsCommands, ElementFilenames) {
  using Names = std::vector<std::u16string>;
  const auto saved = [](const std::string& index) {
    return Log{"Saving render element " + index + " output to z.exr"};
  };
  const auto holds = [](const Names& names) {
    return [=](const S& s) { return s.useRenderElementFilenames && s.renderElementFilenames == names; };
  };
  check(
      {
          {"OutputImageReFilename,0,z.exr", {}, saved("0"), holds({u"z.exr", u"b"})},
          {"OutputImageReFilename,1,z.exr", {}, saved("1"), holds({u"a", u"z.exr"})},
          {"OutputImageReFilename,5,z.exr", {}, saved("5"), holds({u"a", u"b", u"z.exr"})},
          {"OutputImageReFilename,-1,z.exr", {}, saved("-1"), holds({u"a", u"b", u"z.exr"})},
          {"OutputImageReFilename,x,z.exr",
           {"ERROR: OutputImageReFilename: Parameter 1 , \"x\", is not a valid index."},
           {},
           [](const S& s) { return !s.useRenderElementFilenames && s.renderElementFilenames.size() == 2; }},
      },
      [](S& settings) {
        settings.renderElementFilenames = {u"a", u"b"};
      });
  check({{"OutputImageReFilename,0",
          {},
          {"OutputImageReFilename: requires 2 parameters, got 1, setting to false"},
          [](const S& s) { return !s.useRenderElementFilenames; }}},
        [](S& settings) { settings.useRenderElementFilenames = true; });
}

TEST_F(SettingsCommands, Gamma) {
  const auto holds = [](bool on, float in, float out) {
    return [=](const S& s) { return s.gammaCorrection == on && s.gammaIn == in && s.gammaOut == out; };
  };
  check({
      {"GammaCorrection,2.2,1e-7",
       {},
       {"Enabling gamma correction", "Gamma in: 2.2", "Gamma out: 1e-07"},
       holds(true, 2.2F, 1e-7F)},
      {"GammaCorrection,2.2,x",
       {"ERROR: GammaCorrection: Parameter 2, \"x\", is not a valid gamma value."},
       {},
       holds(false, 2.2F, 1.0F)},
      {"GammaCorrection,2.2 ,3",
       {"ERROR: GammaCorrection: Parameter 1, \"2.2 \", is not a valid gamma value."},
       {},
       holds(false, 1.0F, 1.0F)},
  });
  check({{"GammaCorrection,1",
          {},
          {"GammaCorrection: requires 2 parameters, got 1, setting to false"},
          holds(false, 1.0F, 1.0F)}},
        [](S& settings) { settings.gammaCorrection = true; });
}

TEST_F(SettingsCommands, PathConfiguration) {
  const std::string first = "Setting alternate path config file";
  check({{"PathConfigFile,C:/paths.mxp", {}, {first, "Using alternate path config file C:/paths.mxp"}, [](const S& s) {
            return s.usePathConfigFile && s.pathConfigFile == u"C:/paths.mxp";
          }}});
  check({{"PathConfigFile",
          {},
          {first, "PathConfigFile: requires 1 parameters, got 0, setting to false"},
          [](const S& s) { return !s.usePathConfigFile; }}},
        [](S& settings) { settings.usePathConfigFile = true; });
}

TEST_F(SettingsCommands, IgnoredElements) {
  using Names = std::vector<std::u16string>;
  check(
      {
          {"IgnoreRenderElementsByName,Z,Z,\"a,b\",",
           {},
           {},
           [](const S& s) {
             return s.ignoredRenderElementNames == Names{u"old", u"Z", u"Z", u"a,b", u""};
           }},
          {"IgnoreRenderElementsByName",
           {},
           {"IgnoreRenderElementsByName: did not specify any render elements to skip"},
           [](const S& s) { return s.ignoredRenderElementNames == Names{u"old"}; }},
      },
      [](S& settings) { settings.ignoredRenderElementNames = {u"old"}; });
}

}  // namespace
}  // namespace corvantis
