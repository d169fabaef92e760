#include "plugin/util/files.h"

#include <gmock/gmock.h>

#include "plugin/util/text.h"
#include "support/fake_files.h"
#include "support/temporary_folder.h"

namespace corvantis {
namespace {

class FileHelpers : public testing::Test {
 protected:
  std::u16string existing(const std::string& name) {
    folder.write(name, "content");
    return folder.wide(name);
  }

  support::TemporaryFolder folder;
  support::FakeFiles fake;
  platform::FilesReplacement replacement{fake};
};

TEST_F(FileHelpers, TellFilesFromFolders) {
  const std::u16string file = existing("scenes/a.max");
  EXPECT_TRUE(file_exists(file));
  EXPECT_FALSE(directory_exists(file));
  EXPECT_FALSE(file_exists(folder.wide("scenes")));
  EXPECT_TRUE(directory_exists(folder.wide("scenes")));
  EXPECT_FALSE(file_exists(folder.wide("missing/a.max")));
  EXPECT_FALSE(directory_exists(folder.wide("missing")));
}

TEST_F(FileHelpers, TakeFiveErrorsForAnAnswer) {
  const std::u16string file = existing("a.max");
  for (const std::uint32_t absent : {2U, 3U, 53U, 67U, 123U}) {
    fake.fail("attributes", "a.max", absent, 2);
    EXPECT_FALSE(file_exists(file)) << absent;
    EXPECT_FALSE(directory_exists(file)) << absent;
  }
  EXPECT_TRUE(file_exists(file));
}

TEST_F(FileHelpers, ThrowWhenTheyCannotLook) {
  const std::u16string file = existing("\xC3\xA9.max");
  fake.fail("attributes", ".max", platform::error::kAccessDenied);
  EXPECT_THAT([&] { file_exists(file); },
              testing::ThrowsMessage<std::runtime_error>("file_exists: Could not get the file attributes of \"" +
                                                         to_string(file) + "\""));
  EXPECT_THAT([&] { directory_exists(file); },
              testing::ThrowsMessage<std::runtime_error>(
                  "boost::filesystem::status: " + to_string(platform::systemErrorText(platform::error::kAccessDenied)) +
                  ": \"" + to_string(file) + "\""));
}

TEST_F(FileHelpers, MakeFoldersFromTheUppermostDown) {
  fake.fail("createDirectory", "", 0);  // nothing is to be made, only asked for
  make_directories(u"D:\\out\\a\\b\\");
  make_directories(u"out//a/");  // from the caller's own text
  make_directories(u"");
  EXPECT_THAT(fake.log.lines(),
              testing::ElementsAre("createDirectory D:", "createDirectory D:\\out", "createDirectory D:\\out\\a",
                                   "createDirectory D:\\out\\a\\b", "createDirectory out", "createDirectory out//a"));
}

}  // namespace
}  // namespace corvantis
