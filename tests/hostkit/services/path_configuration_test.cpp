#include "hostkit/services/path_configuration.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace hostkit::services {
namespace {

using Folders = std::vector<std::string>;

TEST(PathConfiguration, LoadsReplacesAndMerges) {
  const support::TemporaryFolder folder;
  std::vector<std::string> log;
  PathConfiguration paths([&](const std::string& line) { log.push_back(line); });
  folder.write("a.mxp",
               "[Directories]\nAll=\\all\n[BitmapDirs]\nDir1=\\tex\nDir2=\\all\n[XReferenceDirs]\nDir1=\\xref\n[Other]"
               "\nX=\\no\n");
  folder.write("b.mxp", "[bitmapdirs]\nDir1=\\more\n[PlugInDirs]\nA=\\plug\n");

  ASSERT_TRUE(paths.LoadPathConfiguration(folder.wide("a.mxp")));
  EXPECT_EQ(paths.textureFolders(), (Folders{"/all", "/tex"}));
  EXPECT_EQ(paths.xrefFolders(), (Folders{"/all", "/xref"}));
  EXPECT_EQ(paths.pluginFolders(), (Folders{"/all"}));

  ASSERT_TRUE(paths.MergePathConfiguration(folder.wide("b.mxp")));
  EXPECT_EQ(paths.textureFolders(), (Folders{"/all", "/tex", "/more"}));
  EXPECT_EQ(paths.pluginFolders(), (Folders{"/all", "/plug"}));

  ASSERT_TRUE(paths.LoadPathConfiguration(folder.wide("b.mxp")));
  EXPECT_EQ(paths.textureFolders(), (Folders{"/more"}));
  EXPECT_TRUE(log.empty());

  for (const char* bad : {"missing.mxp", "broken.mxp"}) {
    folder.write("broken.mxp", "[Directories\nno equals sign\n");
    EXPECT_FALSE(paths.LoadPathConfiguration(folder.wide(bad)));
    EXPECT_EQ(paths.textureFolders(), (Folders{"/more"})) << "a file that cannot be read changes nothing";
    ASSERT_EQ(log.size(), 1U);
    EXPECT_NE(log[0].find(bad), std::string::npos);
    log.clear();
  }
}

}  // namespace
}  // namespace hostkit::services
