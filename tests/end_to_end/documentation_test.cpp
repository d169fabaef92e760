// The examples of docs/tessaryn-util.md, run in the job that the page shows.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "programs.h"
#include "support/build_folders.h"
#include "support/small_scene.h"
#include "support/temporary_folder.h"

namespace end_to_end {
namespace {

struct Block {
  std::string language, text;
};

std::vector<Block> blocksOf(std::istream& page) {
  std::vector<Block> blocks;
  bool inside = false;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("```")) {
      inside = !inside;
      if (inside) blocks.push_back({line.substr(3), ""});
    } else if (inside) {
      blocks.back().text += line + "\n";
    }
  }
  return blocks;
}

// What follows `mark` in the comments of a script.
std::vector<std::string> promised(const std::string& script, const std::string& mark) {
  std::vector<std::string> found;
  std::istringstream lines(script);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t at = line.find(mark);
    if (at != std::string::npos) found.push_back(line.substr(at + mark.size()));
  }
  return found;
}

class TessarynUtilPage : public testing::Test {
 protected:
  TessarynUtilPage() {
    std::ifstream page(support::sourceFolder() + "/docs/tessaryn-util.md");
    for (const Block& block : blocksOf(page)) {
      if (block.language == "json") job_ = block.text;
      if (block.language != "maxscript") continue;
      stages_[block.text.substr(3, block.text.find_first_of(":\n") - 3)] += block.text;
    }
    for (auto& [stage, script] : stages_) script += "ok\n";
    folder_.write(
        "scene.gltf",
        support::smallScene(R"("frameRate":24,"render":{"width":32,"height":24,"samples":1,"output":"own.exr"})"));
  }
  void expectPromised(const std::string& stage, const std::string& mark, const std::string& output) {
    const auto lines = promised(stages_[stage], mark);
    EXPECT_FALSE(lines.empty()) << stage;
    for (const std::string& line : lines) EXPECT_NE(output.find(line), std::string::npos) << line << "\n" << output;
  }

  support::TemporaryFolder folder_;
  std::string job_;
  std::map<std::string, std::string> stages_;  // by what the first line of their blocks says: these as printed
};

TEST_F(TessarynUtilPage, LogsWhatItSaysInTheJobThatItShows) {
  folder_.write("before-the-job.ms", stages_["before the job"]);
  folder_.write("before-a-frame.ms", stages_["before a frame"]);
  folder_.write("after-the-job.ms", stages_["after the job"]);
  const Finished worker = run("tessaryn-worker", {"run", "--verbose", folder_.write("job.json", job_)}, folder_.path());
  ASSERT_EQ(worker.exitCode, 0) << worker.output << worker.errors;
  for (const char* stage : {"before the job", "before a frame", "after the job"})
    expectPromised(stage, "-- log: ", worker.output);
}

TEST_F(TessarynUtilPage, PrintsWhatItSaysWithoutAWorker) {
  std::string script = stages_["on its own"];
  const std::string name = "\"scene.gltf\"";
  script.replace(script.find(name), name.size(), "@\"" + folder_.path("scene.gltf") + "\"");
  const Finished host = run("standin-host", {folder_.write("script.ms", script)}, folder_.path());
  EXPECT_EQ(host.exitCode, 0) << host.output << host.errors;
  expectPromised("on its own", "-- prints: ", host.output);
  EXPECT_TRUE(folder_.exists("own0004.exr"));
}

}  // namespace
}  // namespace end_to_end
