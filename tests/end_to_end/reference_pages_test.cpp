// The tables of docs/image-files.md, docs/protocol.md and docs/scene-settings.md, held against those of the programs.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "hostkit/image/bitmap_manager.h"
#include "standin/scene/loader.h"
#include "standin/scene/settings.h"
#include "support/build_folders.h"
#include "support/small_scene.h"
#include "support/temporary_folder.h"

namespace end_to_end {
namespace {

std::string textOf(const std::string& file) {
  std::ifstream stream(support::sourceFolder() + "/" + file);
  std::ostringstream text;
  text << stream.rdbuf();
  EXPECT_FALSE(text.str().empty()) << file;
  return text.str();
}

// The first group of every match.
std::vector<std::string> matches(const std::string& text, const char* pattern) {
  const std::regex expression(pattern);
  std::vector<std::string> found;
  for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at) found.push_back((*at)[1]);
  return found;
}

// What the first column of a section's tables names in code spelling. The heading stands at the start of a line.
std::vector<std::string> rowsBelow(const std::string& page, const std::string& heading) {
  const std::size_t start = page.find("\n" + heading + "\n");
  EXPECT_NE(start, std::string::npos) << heading;
  const std::size_t next = page.find("\n#", start + 1);
  std::vector<std::string> names;
  for (const std::string& cell : matches(page.substr(start, next - start), "\n\\| (`[^|]*`) \\|"))
    for (const std::string& name : matches(cell, "`([^`]*)`")) names.push_back(name);
  return names;
}

TEST(ImageFilesPage, NamesTheExtensionsAndTheErrorsOfTheImages) {
  const std::string page = textOf("docs/image-files.md");
  std::set<std::string> extensions;
  for (const auto& known : hostkit::image::kImageExtensions) extensions.insert("." + std::string(known.extension));
  const auto rows = rowsBelow(page, "## Formats");
  EXPECT_EQ(std::set<std::string>(rows.begin(), rows.end()), extensions);

  std::vector<std::string> codes;
  for (int code = 1; code <= static_cast<int>(hostkit::image::OutputResult::cannotRename); ++code)
    codes.push_back(std::to_string(code));
  EXPECT_EQ(matches(page, "\n\\| (\\d+) \\|"), codes);
}

TEST(SceneSettingsPage, NamesTheElementTypes) {
  std::string cell;
  for (const auto& known : standin::scene::kElementTypeNames) {
    cell += (cell.empty() ? "`" : ", `") + std::string(known.name) + "`";
    if (known.inWords != known.name) cell += " (or `" + std::string(known.inWords) + "`)";
  }
  EXPECT_NE(textOf("docs/scene-settings.md").find("| `type` | text | required | " + cell + " |"), std::string::npos)
      << cell;
}

// Every key of the page is read where the page says, and no other key is read.
TEST(SceneSettingsPage, NamesTheKeysThatAreRead) {
  const struct {
    const char* heading;
    const char* place;   // in an error
    const char* before;  // what leads to the key
    const char* after;
    bool onCamera;
  } sections[] = {
      {"## On the default scene", "", "", "", false},
      {"### `render`", "render.", R"("render":{)", "}", false},
      {"### `elements`", "elements[0].", R"("elements":[{"type":"beauty",)", "}]", false},
      {"### `viewports`", "viewports[0].", R"("viewports":[{)", "}]", false},
      {"## On nodes", "", "", "", true},
      {"### `multipass`", "multipass.", R"("multipass":{)", "}", true},
  };
  const std::string page = textOf("docs/scene-settings.md");
  const support::TemporaryFolder folder;
  std::set<std::string> named;
  for (const auto& section : sections)
    for (const std::string& key : rowsBelow(page, section.heading)) {
      named.insert(key);
      const std::string settings = section.before + ("\"" + key + "\":null") + section.after;
      const std::string scene = folder.write(
          "scene.gltf", section.onCamera ? support::smallScene("", settings) : support::smallScene(settings));
      try {
        standin::scene::loadScene({scene, {}, {}, {}});
        ADD_FAILURE() << section.heading << ": " << key << " is not read";
      } catch (const standin::scene::SceneError& e) {
        EXPECT_NE(std::string(e.what()).find("standin." + (section.place + key) + ": expected"), std::string::npos)
            << e.what();
      }
    }
  const auto read =
      matches(textOf("src/standin/scene/settings.cpp"), R"re((?:\bread\w*|reader\.find)\((?:reader, )?"(\w+)")re");
  EXPECT_EQ(std::set<std::string>(read.begin(), read.end()), named);
}

// The words are constants without a list: their header is read as a text.
TEST(ProtocolPage, NamesTheWordsOfTheWire) {
  const std::string words = textOf("src/protocol/words.h"), page = textOf("docs/protocol.md");
  const auto spelledIn = [&](const char* scope) {
    const std::size_t start = words.find(std::string("namespace ") + scope + " {");
    const auto found =
        matches(words.substr(start, words.find("}  // namespace", start) - start), " = \"([A-Za-z]+) ?\"");
    return std::set<std::string>(found.begin(), found.end());
  };
  std::set<std::string> rows;
  for (const char* heading : {"### Job commands", "### Settings commands", "### Script commands"})
    for (const std::string& name : rowsBelow(page, heading))
      if (name != "OK" && std::regex_match(name, std::regex("[A-Z][A-Za-z]+")))
        rows.insert(name);  // no text, no result
  EXPECT_EQ(rows, spelledIn("command"));
  const auto asked = matches(page, "\n\\| `FUNCTION: ([A-Z]+) ?` \\+ [^|]*\\| `");
  EXPECT_EQ(std::set<std::string>(asked.begin(), asked.end()), spelledIn("question"));
}

}  // namespace
}  // namespace end_to_end
