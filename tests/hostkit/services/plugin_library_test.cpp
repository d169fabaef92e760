#include "hostkit/services/plugin_library.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/build_folders.h"

namespace hostkit::services {
namespace {

std::string plugin(const std::string& name) { return support::testProgramFolder() + "/" + name; }

TEST(PluginLibrary, TakesAPluginOfItsOwnVersion) {
  const PluginLibrary library(plugin("test_plugin_good.so"));
  EXPECT_EQ(library.description(), u"A test plug-in");
}

TEST(PluginLibrary, RefusesAllOthersAndSaysWhy) {
  const struct {
    std::string path;
    const char* named;
  } cases[] = {
      {plugin("test_plugin_old.so"), "expected version 0x55f03700, got 0x51800000"},
      {plugin("test_plugin_mute.so"), "does not export LibVersion"},
      {plugin("missing.so"), "cannot be loaded"},
      {"/etc/passwd", "cannot be loaded"},
  };
  for (const auto& c : cases) {
    try {
      const PluginLibrary library(c.path);
      ADD_FAILURE() << c.path << " was accepted";
    } catch (const std::runtime_error& e) {
      EXPECT_NE(std::string(e.what()).find(c.named), std::string::npos) << e.what();
      EXPECT_NE(std::string(e.what()).find(c.path), std::string::npos) << e.what();
    }
  }
}

}  // namespace
}  // namespace hostkit::services
