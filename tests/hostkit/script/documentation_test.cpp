// docs/scripting.md names every built-in function and constant, and no other.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "hostkit/script/engine/engine.h"
#include "hostkit/script/machine/runtime.h"
#include "hostkit/script/syntax/text.h"
#include "support/build_folders.h"

namespace {

using namespace hostkit::script;

class BareHost : public HostBindings {
  std::optional<HostValue> get(std::u16string_view) override { return std::nullopt; }
};

using Names = std::set<std::string>;

// Functions and properties of built-in structures are named with the structure; classes are told elsewhere.
Names builtIn() {
  BareHost host;
  Engine engine(host, {});
  Names names;
  for (const GlobalObject* global : engine.runtime().globals()) {
    const std::string name = hostkit::toUtf8(global->name->text);
    if (as<ClassObject>(global->value)) continue;
    const auto* space = as<NamespaceObject>(global->value);
    if (!space) {
      names.insert(name);
      continue;
    }
    for (const auto& [function, object] : space->functions) names.insert(hostkit::toUtf8(object->entry.name));
    for (const auto& property : space->properties) names.insert(name + "." + hostkit::toUtf8(property.name->text));
  }
  return names;
}

// The names in the second column of the section's table.
Names documented() {
  std::ifstream page(support::sourceFolder() + "/docs/scripting.md");
  Names names;
  bool inside = false;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("## ")) inside = line == "## Built-in functions";
    if (!inside || !line.starts_with("| ")) continue;
    const std::size_t from = line.find('|', 1) + 1;
    std::istringstream cell(line.substr(from, line.find('|', from) - from));
    for (std::string name; cell >> name;) {
      if (name.front() == '`') names.insert(name.substr(1, name.size() - 2));
    }
  }
  return names;
}

TEST(ScriptingPage, NamesWhatTheRuntimeHas) { EXPECT_THAT(documented(), testing::ContainerEq(builtIn())); }

}  // namespace
