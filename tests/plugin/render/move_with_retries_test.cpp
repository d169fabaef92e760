#include "plugin/render/move_with_retries.h"

#include <numeric>

#include "frame_fixture.h"
#include "platform/files.h"

namespace corvantis {
namespace {

using testing::ElementsAreArray;

constexpr const char* kSource = R"(OUT\tmp\a.exr)";
constexpr const char* kDestination = R"(OUT\shot\a0005.exr)";

struct MoveCase {
  const char* name;
  bool useAltOutput;
  // Error number, ending of the destinations it strikes, how often. 0: nothing fails by order.
  std::uint32_t errorNumber;
  const char* ending;
  int times;
  int failedAttempts;
  const char* savedAs;  // null: given up
};

std::string messageOf(std::uint32_t errorNumber) { return support::narrow(platform::systemErrorText(errorNumber)); }

std::vector<std::string> expectedLines(const MoveCase& move) {
  std::vector<std::string> lines;
  for (int attempt = 1; attempt <= move.failedAttempts; ++attempt) {
    lines.push_back(std::string("Attempt to move ") + kSource +
                    " to destination failed: " + messageOf(move.errorNumber));
    lines.push_back("Waiting " + std::to_string(attempt) + " seconds to try again.");
  }
  if (move.savedAs) lines.push_back(std::string(R"(Saved image to OUT\shot\)") + move.savedAs);
  return lines;
}

class MoveFixture : public support::FrameFixture {
 protected:
  MoveFixture() {
    out.write("tmp/a.exr", "image");
    out.write("shot/other.exr", "other");
  }
  std::string move() {
    return errorOf([&] { moveWithRetries(job.settings, at("tmp/a.exr"), at("shot/a0005.exr"), connection); });
  }
  std::uint32_t slept() const {
    const std::vector<std::uint32_t> sleeps = clock.sleeps();
    return std::accumulate(sleeps.begin(), sleeps.end(), 0U);
  }
};

class MoveWithRetries : public MoveFixture, public testing::WithParamInterface<MoveCase> {};

TEST_P(MoveWithRetries, TriesWaitsAndTellsTheWorker) {
  const MoveCase& expected = GetParam();
  job.settings.useAltOutput = expected.useAltOutput;
  if (expected.errorNumber != 0) files.fail("copyFile", expected.ending, expected.errorNumber, expected.times);

  const std::string error = move();

  EXPECT_THAT(told(), ElementsAreArray(expectedLines(expected)));
  const int n = expected.failedAttempts;
  EXPECT_EQ(slept(), static_cast<std::uint32_t>(n * (n + 1) / 2 * 1000));
  EXPECT_EQ(out.exists("tmp/a.exr"), expected.savedAs == nullptr);
  if (expected.savedAs) {
    EXPECT_EQ(error, "");
    EXPECT_EQ(out.read(std::string("shot/") + expected.savedAs), "image");
  } else {
    EXPECT_THAT(relative({error}), testing::ElementsAre(std::string("Failed to save ") + kDestination + ": " +
                                                        messageOf(expected.errorNumber)));
  }
}

using platform::error::kAccessDenied;
using platform::error::kDiskFull;
using platform::error::kSharingViolation;
constexpr int kForGood = 1000;

INSTANTIATE_TEST_SUITE_P(
    Cases, MoveWithRetries,
    testing::Values(
        MoveCase{"Free", true, 0, "", 0, 0, "a0005.exr"},
        MoveCase{"LockedTwice", true, kSharingViolation, "a0005.exr", 2, 2, "a0005.exr"},
        MoveCase{"LockedFourTimesWithoutAlternatives", false, kSharingViolation, "a0005.exr", 4, 4, "a0005.exr"},
        MoveCase{"LockedForGoodWithoutAlternatives", false, kSharingViolation, "a0005.exr", kForGood, 5, nullptr},
        MoveCase{"LockedForGood", true, kSharingViolation, "a0005.exr", kForGood, 5, "a0005_alt_0.exr"},
        MoveCase{"AlternativesLockedToo", true, kSharingViolation, ".exr", 9, 9, "a0005_alt_4.exr"},
        MoveCase{"EverythingLockedForGood", true, kSharingViolation, ".exr", kForGood, 10, nullptr},
        MoveCase{"DiskFullForAWhile", true, kDiskFull, ".exr", 1, 1, "a0005.exr"},
        MoveCase{"ReadOnlyFolder", false, kAccessDenied, ".exr", kForGood, 5, nullptr}),
    [](const auto& testCase) { return testCase.param.name; });

TEST_F(MoveFixture, GivesUpOnAlternativesOnlyAfterTheLastWait) {
  job.settings.useAltOutput = true;
  files.fail("copyFile", ".exr", kSharingViolation);
  move();
  EXPECT_THAT(clock.sleeps(), testing::ElementsAre(1000, 2000, 3000, 4000, 5000, 6000, 7000, 8000, 9000, 10000));
  std::vector<std::string> expected(6, std::string("deleteFile ") + kDestination);
  for (int k = 0; k < 5; ++k) expected.push_back(R"(deleteFile OUT\shot\a0005_alt_)" + std::to_string(k) + ".exr");
  EXPECT_THAT(relative(files.log.linesOf({"deleteFile"})), ElementsAreArray(expected));
}

TEST_F(MoveFixture, LeavesAFolderInThePlaceOfTheDestinationAlone) {
  job.settings.useAltOutput = true;
  out.write("shot/a0005.exr/inside.txt", "kept");
  EXPECT_EQ(move(), "");
  EXPECT_EQ(told().back(), R"(Saved image to OUT\shot\a0005_alt_0.exr)");
  EXPECT_TRUE(out.exists("shot/a0005.exr/inside.txt"));
}

TEST_F(MoveFixture, ReportsASourceThatIsGone) {
  platform::files().deleteFile(at("tmp/a.exr"));
  EXPECT_THAT(relative({move()}), testing::ElementsAre(std::string("Failed to save ") + kDestination + ": " +
                                                       messageOf(platform::error::kFileNotFound)));
  EXPECT_EQ(slept(), 15000U);
}

TEST_F(MoveFixture, ReplacesAnOlderFile) {
  out.write("shot/a0005.exr", "much older and longer");
  EXPECT_EQ(move(), "");
  EXPECT_EQ(out.read("shot/a0005.exr"), "image");
}

TEST_F(MoveFixture, KeepsAFileThatIsToBeMovedOntoItself) {
  EXPECT_EQ(errorOf([&] { moveWithRetries(job.settings, at("tmp/a.exr"), at("tmp") + u"/\\a.exr", connection); }), "");
  EXPECT_EQ(out.read("tmp/a.exr"), "image");
  EXPECT_EQ(told().back(), R"(Saved image to OUT\tmp/\a.exr)");
}

}  // namespace
}  // namespace corvantis
