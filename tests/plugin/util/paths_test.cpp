#include "plugin/util/paths.h"

#include <gtest/gtest.h>

#include <limits>

namespace corvantis {
namespace {

TEST(Paths, AreNormalised) {
  const struct {
    std::u16string path, normal;
  } rows[] = {
      {u"", u""},
      {u"/", u"\\"},
      {u"C:/renders//shot/", u"C:\\renders\\shot\\"},
      {u"//server/share//a", u"\\\\server\\share\\a"},
      {u"\\\\", u"\\\\"},
      {u"a\\\\b", u"a\\b"},
      {u"a\\\\\\b", u"a\\\\b"},
      {u"a\\\\\\\\b", u"a\\\\b"},
      {u"a\\\\\\\\\\b", u"a\\\\\\b"},
      {u"\\\\\\server", u"\\\\\\server"},
      {u"\\\\\\\\server", u"\\\\\\server"},
  };
  for (const auto& row : rows) EXPECT_EQ(normalize_path(row.path), row.normal);
}

TEST(Paths, FoldersGetOneTrailingBackslash) {
  EXPECT_EQ(ensure_trailing_backslash(u""), u"");
  EXPECT_EQ(ensure_trailing_backslash(u"C:\\Temp"), u"C:\\Temp\\");
  EXPECT_EQ(ensure_trailing_backslash(u"C:\\Temp\\"), u"C:\\Temp\\");
  EXPECT_EQ(ensure_trailing_backslash(u"C:/Temp/"), u"C:/Temp/\\");
}

TEST(Paths, AreTakenApart) {
  const struct {
    std::u16string path, parent, name, stem, extension;
  } rows[] = {
      {u"", u"", u"", u"", u""},
      {u"beauty.exr", u"", u"beauty.exr", u"beauty", u".exr"},
      {u"C:\\out\\beauty.exr", u"C:\\out", u"beauty.exr", u"beauty", u".exr"},
      {u"C:/out//beauty.tar.exr", u"C:\\out", u"beauty.tar.exr", u"beauty.tar", u".exr"},
      {u"C:\\out.d\\beauty", u"C:\\out.d", u"beauty", u"beauty", u""},
      {u"C:\\beauty.exr", u"C:\\", u"beauty.exr", u"beauty", u".exr"},
      {u"C:beauty.exr", u"C:", u"beauty.exr", u"beauty", u".exr"},
      {u"C:", u"", u"C:", u"C:", u""},
      {u"\\renders\\a.exr", u"\\renders", u"a.exr", u"a", u".exr"},
      {u"\\a.exr", u"\\", u"a.exr", u"a", u".exr"},
      {u"\\\\server\\share\\a.exr", u"\\\\server\\share", u"a.exr", u"a", u".exr"},
      {u"\\\\server\\share", u"\\\\server\\", u"share", u"share", u""},
      {u"\\\\server", u"", u"\\\\server", u"\\\\server", u""},
      {u"a\\\\\\b.c", u"a", u"b.c", u"b", u".c"},
      {u"out\\.hidden", u"out", u".hidden", u"", u".hidden"},
      {u"out\\end.", u"out", u"end.", u"end", u"."},
      {u"a\\b\\", u"a\\b", u".", u"", u""},
      {u"C:\\", u"C:\\", u".", u"", u""},
      {u"a\\..", u"a", u"..", u".", u""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.path));
    EXPECT_EQ(parent_of(row.path), row.parent);
    EXPECT_EQ(file_name_of(row.path), row.name);
    EXPECT_EQ(stem_of(row.path), row.stem);
    EXPECT_EQ(extension_of(row.path), row.extension);
  }
}

TEST(Paths, FrameNumbersArePadded) {
  EXPECT_EQ(pad_frame_number(5, 4), u"0005");
  EXPECT_EQ(pad_frame_number(0, 4), u"0000");
  EXPECT_EQ(pad_frame_number(12345, 4), u"12345");
  EXPECT_EQ(pad_frame_number(-5, 4), u"-005");
  EXPECT_EQ(pad_frame_number(-1234, 4), u"-1234");
  EXPECT_EQ(pad_frame_number(std::numeric_limits<std::int32_t>::min(), 4), u"-2147483648");
  EXPECT_EQ(pad_frame_number(7, 0), u"7");
}

TEST(Paths, GetTheFrameNumberBeforeTheExtensionOrAnotherTail) {
  const struct {
    std::u16string name, numbered, otherTail;
  } rows[] = {{u"beauty.exr", u"beauty0007.exr", u"beauty_alt_0.exr"},
              {u"C:/out//beauty.exr", u"C:\\out\\beauty0007.exr", u"C:\\out\\beauty_alt_0.exr"},
              {u"C:\\out\\beauty", u"C:\\out\\beauty0007", u"C:\\out\\beauty_alt_0.exr"},
              {u"out\\beauty.tar.exr", u"out\\beauty.tar0007.exr", u"out\\beauty.tar_alt_0.exr"},
              {u"C:beauty.exr", u"C:\\beauty0007.exr", u"C:beauty_alt_0.exr"},
              {u"C:\\beauty.exr", u"C:\\beauty0007.exr", u"C:\\beauty_alt_0.exr"}};
  for (const auto& row : rows) {
    EXPECT_EQ(make_numbered_name(row.name, 7), row.numbered);
    EXPECT_EQ(replace_file_name(row.name, u"_alt_0.exr"), row.otherTail);
  }
  EXPECT_EQ(make_numbered_name(u"a.exr", -3), u"a-003.exr");
}

TEST(Paths, OfScenesAreTakenApartAsTheyStand) {
  const struct {
    std::u16string path, fileName, folder;
  } cases[] = {
      {u"C:\\scenes\\a.max", u"a.max", u"C:\\scenes"},
      {u"C:\\a.max", u"a.max", u"C:\\"},
      {u"C:\\\\a.max", u"a.max", u"C:\\"},
      {u"C:a.max", u"a.max", u"C:"},
      {u"C:", u"C:", u""},
      {u"C:\\", u"\\", u"C:"},
      {u"1:\\", u".", u"1:"},
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
