#include "plugin/daemon/scene_path.h"

#include <gtest/gtest.h>

namespace corvantis {
namespace {

TEST(ScenePath, IsTakenApartAsWindowsDoes) {
  const struct {
    std::u16string path, fileName, folder;
  } cases[] = {
      {u"C:\\scenes\\a.max", u"a.max", u"C:\\scenes"},
      {u"C:\\a.max", u"a.max", u"C:\\"},
      {u"C:\\\\a.max", u"a.max", u"C:\\"},
      {u"C:a.max", u"a.max", u"C:"},
      {u"C:", u"C:", u""},
      {u"C:\\", u"\\", u"C:"},
      {u"C:\\scenes\\", u".", u"C:\\scenes"},
      {u"C:\\scenes\\\\", u".", u"C:\\scenes"},
      {u"C:\\one\\\\two\\a.max", u"a.max", u"C:\\one\\\\two"},
      {u"\\\\server\\share\\a.max", u"a.max", u"\\\\server\\share"},
      {u"\\\\server\\a.max", u"a.max", u"\\\\server\\"},
      {u"\\\\server", u"\\\\server", u""},
      {u"\\\\server\\", u"\\", u"\\\\server"},
      {u"\\\\?\\C:\\a.max", u"a.max", u"\\\\?\\C:\\"},
      {u"\\renders\\a.max", u"a.max", u"\\renders"},
      {u"\\a.max", u"a.max", u"\\"},
      {u"\\", u"\\", u""},
      {u"\\\\", u"\\\\", u""},
      {u"scenes\\a.max", u"a.max", u"scenes"},
      {u"a.max", u"a.max", u""},
      {u"..", u"..", u""},
      {u"", u"", u""},
  };
  for (const auto& c : cases) {
    const ScenePath split = splitScenePath(c.path);
    EXPECT_EQ(split.fileName, c.fileName) << testing::PrintToString(c.path);
    EXPECT_EQ(split.folder, c.folder) << testing::PrintToString(c.path);
  }
}

}  // namespace
}  // namespace corvantis
