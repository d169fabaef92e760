// Runs every script below scripts/ and compares what it prints with what its comments expect:
//
//   print (1 + 2)  -- expect: 3
//   sin "a"        -- expect error: -- Unable to convert: "a" to type: Float
//   ""             -- expect value: ""
//
// Expected lines are in the order of the file. Every script runs twice, the second time with a collection at every
// allocation.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "fake_script_host.h"
#include "hostkit/script/engine/engine.h"
#include "hostkit/script/syntax/text.h"
#include "platform/files.h"
#include "support/build_folders.h"
#include "support/temporary_folder.h"

namespace {

using hostkit::fromUtf8;
using hostkit::toUtf8;
using hostkit::script::Engine;
using hostkit::script::EngineOptions;
using hostkit::script::RunResult;

const std::filesystem::path kScripts = std::filesystem::path(support::sourceFolder()) / "tests/hostkit/script/scripts";

struct Expectation {
  std::string output, error, value;
};

std::string after(const std::string& line, const std::string& mark) {
  const std::size_t at = line.find(mark);
  return at == std::string::npos ? "" : line.substr(at + mark.size());
}

Expectation read(const std::filesystem::path& script) {
  Expectation expected;
  std::ifstream file(script);
  for (std::string line; std::getline(file, line);) {
    if (line.find("-- expect:") != std::string::npos) {
      const std::string text = after(line, "-- expect:");
      expected.output += (text.empty() ? text : text.substr(1)) + "\n";
    }
    if (const std::string text = after(line, "-- expect error: "); !text.empty()) expected.error = text;
    if (const std::string text = after(line, "-- expect value: "); !text.empty()) expected.value = text;
  }
  return expected;
}

std::vector<std::filesystem::path> corpus() {
  std::vector<std::filesystem::path> scripts;
  for (const auto& each : std::filesystem::recursive_directory_iterator(kScripts))
    if (each.path().extension() == ".ms" && each.path().filename().string().front() != '_')
      scripts.push_back(each.path());
  std::sort(scripts.begin(), scripts.end());
  return scripts;
}

class ScriptCorpus : public testing::TestWithParam<std::tuple<std::filesystem::path, bool>> {};

TEST_P(ScriptCorpus, PrintsWhatItExpects) {
  const auto& [script, stress] = GetParam();
  const Expectation expected = read(script);
  const support::TemporaryFolder folder;
  tests::FakeScriptHost host(folder.wide() + u"\\");
  std::u16string printed;
  EngineOptions options;
  options.listener = [&](std::u16string_view text) { printed += text; };
  options.collectAlways = stress;
  Engine engine(host, options);
  const RunResult result = engine.runScriptFile(platform::windowsPath(script.string()));
  EXPECT_EQ(toUtf8(printed), expected.output);
  if (expected.error.empty()) {
    EXPECT_TRUE(result.succeeded) << toUtf8(result.errorText);
  } else {
    EXPECT_FALSE(result.succeeded);
    EXPECT_NE(("\n" + toUtf8(result.errorText)).find("\n" + expected.error + "\n"), std::string::npos)
        << toUtf8(result.errorText);
  }
  if (!expected.value.empty()) {
    EXPECT_EQ(toUtf8(result.printed), expected.value);
  }
}

std::string nameOf(const testing::TestParamInfo<std::tuple<std::filesystem::path, bool>>& tested) {
  const auto& [script, stress] = tested.param;
  std::string name = std::filesystem::relative(script, kScripts).replace_extension().string();
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
  return name + (stress ? "_collecting_always" : "");
}

INSTANTIATE_TEST_SUITE_P(Scripts, ScriptCorpus, testing::Combine(testing::ValuesIn(corpus()), testing::Bool()), nameOf);

}  // namespace
