// The library itself, loaded as a host loads it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/dll/library_info.hpp>
#include <boost/dll/shared_library.hpp>
#include <cstdint>
#include <filesystem>

#include "hostsdk/function_publishing.h"
#include "platform/files.h"
#include "support/build_folders.h"
#include "support/environment.h"
#include "support/platform_kind.h"
#include "support/temporary_folder.h"

namespace corvantis {
namespace {

const std::string kLibrary = support::programFolder() + (support::kIsWindows ? "/corvantis.dll" : "/libcorvantis.so");

TEST(Library, TellsWhatItIsAndPublishesItselfWhileLoaded) {
  const std::size_t before = hostsdk::registeredInterfaces().size();
  {
    const boost::dll::shared_library library(kLibrary);
    EXPECT_EQ(std::u16string(library.get<const char16_t*()>("LibDescription")()), u"Corvantis, Cloud interface");
    EXPECT_EQ(library.get<std::uint32_t()>("LibVersion")(), 0x55F03700U);
    library.get<void()>("LibInit")();
    ASSERT_EQ(hostsdk::registeredInterfaces().size(), before + 1);
    const hostsdk::PublishedInterface& published = hostsdk::registeredInterfaces().back()->published();
    EXPECT_EQ(published.name, u"TessarynUtil");
    EXPECT_EQ(published.functions.size() + published.properties.size(), 22U);
  }
  EXPECT_EQ(hostsdk::registeredInterfaces().size(), before);
}

// Whether this process has the file open.
bool isOpen(const support::TemporaryFolder& folder, const std::string& name) {
  // Windows does not let go of a file that is open; elsewhere the system lists what is.
  if (support::kIsWindows) return platform::files().deleteFile(folder.wide(name)) == platform::error::kSharingViolation;
  const auto isIt = [&](const std::filesystem::directory_entry& descriptor) {
    std::error_code gone;
    return std::filesystem::read_symlink(descriptor.path(), gone) == folder.path(name);
  };
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return std::any_of(begin(descriptors), end(descriptors), isIt);
}

TEST(Library, HasItsLogOpenWhileLoaded) {
  const support::TemporaryFolder folder;
  const support::Environment tmp("TMP", folder.path());
  {
    const boost::dll::shared_library library(kLibrary);
    EXPECT_TRUE(isOpen(folder, "corvantis.log"));
  }
  EXPECT_FALSE(isOpen(folder, "corvantis.log"));
}

TEST(Library, ShowsNothingButItsEntryPoints) {
  boost::dll::library_info info(kLibrary);
  std::vector<std::string> symbols = info.symbols();
  EXPECT_THAT(symbols, testing::UnorderedElementsAre("LibDescription", "LibInit", "LibVersion"));
}

}  // namespace
}  // namespace corvantis
