// What TessarynUtil publishes, and the values its properties give.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

#include "interface_fixture.h"

namespace corvantis {
namespace {

using hostsdk::FPValue;

class InterfaceTable : public InterfaceTest {};

TEST_F(InterfaceTable, PublishesEveryEntryUnderItsId) {
  constexpr int f = hostsdk::kFpTypeFloat, i = hostsdk::kFpTypeInt, n = hostsdk::kFpTypeVoid, v = hostsdk::kFpTypeValue,
                b = hostsdk::kFpTypeBool;
  const hostsdk::PublishedInterface& published = tessarynUtil->published();
  EXPECT_EQ(published.name, u"TessarynUtil");
  EXPECT_EQ(published.id, (hostsdk::Interface_ID{0x83928748, 0xA38F941E}));
  EXPECT_EQ(published.flags, 4U);

  using Parameters = std::vector<std::pair<std::u16string, int>>;
  const std::tuple<int, std::u16string, int, Parameters> functions[] = {
      {0, u"Debug_StartJob", b, {{u"fileName", v}, {u"cameraName", v}}},
      {1, u"Debug_EndJob", b, {}},
      {2, u"Debug_RenderFrame", b, {{u"frameIndex", i}}},
      {3, u"SetTitle", n, {{u"title", v}}},
      {4, u"SetProgress", b, {{u"percent", f}}},
      {5, u"FailRender", n, {{u"message", v}}},
      {6, u"GetSubmitInfoEntry", v, {{u"key", v}}},
      {7, u"GetSubmitInfoEntryElementCount", i, {{u"key", v}}},
      {8, u"GetSubmitInfoEntryElement", v, {{u"index", i}, {u"key", v}}},
      {9, u"GetJobInfoEntry", v, {{u"key", v}}},
      {10, u"GetAuxFilename", v, {{u"index", i}}},
      {11, u"GetOutputFilename", v, {{u"index", i}}},
      {12, u"GetPathMappedFilename", v, {{u"inputFilename", v}}},
      {19, u"LogMessage", n, {{u"message", v}}},
      {20, u"WarnMessage", n, {{u"message", v}}},
      {21, u"RunCorvantisDaemon", b, {{u"portNumber", i}, {u"token", v}}},
  };
  ASSERT_EQ(published.functions.size(), std::size(functions));
  for (std::size_t k = 0; k < std::size(functions); ++k) {
    const hostsdk::PublishedFunction& function = published.functions[k];
    Parameters parameters;
    for (const auto& parameter : function.parameters) parameters.emplace_back(parameter.name, parameter.type);
    EXPECT_EQ(std::tuple(int{function.id}, function.name, function.resultType, parameters), functions[k]);
  }

  const std::pair<std::u16string, int> properties[] = {{u"CurrentFrame", i},   {u"CurrentTask", i},
                                                       {u"SceneFileName", v},  {u"SceneFilePath", v},
                                                       {u"JobsDataFolder", v}, {u"PluginsFolder", v}};
  ASSERT_EQ(published.properties.size(), std::size(properties));
  for (std::size_t k = 0; k < std::size(properties); ++k) {
    const hostsdk::PublishedProperty& property = published.properties[k];
    EXPECT_EQ(property.getter, 13 + k);
    EXPECT_EQ(property.setter, hostsdk::kNoFunction);
    EXPECT_EQ(std::pair(property.name, property.type), properties[k]);
  }
}

TEST_F(InterfaceTable, PropertiesWithoutADaemonRunSayThatThereIsNone) {
  job->currentFrame = 7;
  job->currentTask = 7;
  job->sceneFileName = u"a.max";
  host.core.ticksPerFrame = 200;
  host.core.time = 10 * 200 + 199;
  EXPECT_EQ(shown(call(u"CurrentFrame")), "10");
  EXPECT_EQ(shown(call(u"CurrentTask")), "-1");
  for (const auto* name : {u"SceneFileName", u"SceneFilePath", u"JobsDataFolder", u"PluginsFolder"})
    EXPECT_EQ(shown(call(name)), "undefined");
}

TEST_F(InterfaceTable, PropertiesInADaemonRunTellTheJob) {
  job->sceneFileName = u"a.max";
  job->sceneFilePath = u"C:\\scenes";
  job->settings.jobsDataFolder = u"D:\\jobs";
  const auto script = [this] {
    std::string all;
    for (const auto* name :
         {u"CurrentFrame", u"CurrentTask", u"SceneFileName", u"SceneFilePath", u"JobsDataFolder", u"PluginsFolder"})
      all += shown(call(name)) + " ";
    return all;
  };
  EXPECT_TRUE(runScript(
      script, [] {}, R"(SUCCESS: 12 0 "a.max" "C:\scenes" "D:\jobs" "" )"));
}

TEST_F(InterfaceTable, OutputFilenamesAreAnsweredWithOrWithoutADaemonRun) {
  job->savedOutputFiles = {u"a.exr", u"b.exr"};
  const auto all = [this] {
    std::string shownAll;
    for (const std::int32_t index : {-1, 0, 1, 2, 2147483647})
      shownAll += shown(call(u"GetOutputFilename", {FPValue::ofInt(index)})) + " ";
    return shownAll;
  };
  const std::string expected = R"(undefined "a.exr" "b.exr" undefined undefined )";
  EXPECT_EQ(all(), expected);
  EXPECT_TRUE(runScript(
      all, [] {}, "SUCCESS: " + expected));
}

}  // namespace
}  // namespace corvantis
