#include "plugin/util/files.h"

#include <gmock/gmock.h>

#include <set>

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

// Each by a list of its own; every other error is thrown.
TEST_F(FileHelpers, TakeSomeErrorsForAnAnswer) {
  const std::u16string file = existing("a.max");
  const std::set<std::uint32_t> noFile = {2, 3, 53, 67, 123};
  const std::set<std::uint32_t> noFolder = {2, 3, 15, 21, 32, 53, 87, 123, 161};
  for (std::uint32_t number = 1; number < 300; ++number) {
    fake.fail("attributes", "a.max", number, 2);
    if (noFile.contains(number)) {
      EXPECT_FALSE(file_exists(file)) << number;
    } else {
      EXPECT_THROW(file_exists(file), std::runtime_error) << number;
    }
    if (noFolder.contains(number)) {
      EXPECT_FALSE(directory_exists(file)) << number;
    } else {
      EXPECT_THROW(directory_exists(file), std::runtime_error) << number;
    }
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
