#include "worker/job/frame_set.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace worker {
namespace {

TEST(FrameSet, ReadsFramesRangesAndSteps) {
  const struct {
    const char* text;
    std::vector<std::int32_t> frames;
  } cases[] = {
      {"7", {7}},
      {"1-3", {1, 2, 3}},
      {"3-1", {3, 2, 1}},
      {"1-2,30,40-46x3", {1, 2, 30, 40, 43, 46}},
      {"40-45x2", {40, 42, 44}},
      {"5,1-6x2,5", {5, 1, 3}},
      {"-3", {-3}},
      {"-2--1,-1-1", {-2, -1, 0, 1}},
      {"2147483646-2147483647", {2147483646, 2147483647}},
      {"1-10x100", {1}},
  };
  for (const auto& c : cases) EXPECT_EQ(parseFrameSet(c.text), c.frames) << c.text;
}

TEST(FrameSet, NamesThePartItCannotRead) {
  const struct {
    const char* text;
    const char* named;
  } cases[] = {{"", "\"\""},
               {"1,", "\"1,\""},
               {"1,,2", "\"\""},
               {"a", "\"a\""},
               {"1,b-3", "\"b-3\""},
               {"1-", "\"1-\""},
               {"1-5x", "\"1-5x\""},
               {"1-5x0", "the step"},
               {"1-5y2", "\"y2\""},
               {" 1", "\" 1\""},
               {"1.5", "\".5\""},
               {"2147483648", "out of range"},
               {"1-2000000", "more than 1000000"},
               {"-2147483648-2147483647", "more than 1000000"}};
  for (const auto& c : cases) {
    try {
      parseFrameSet(c.text);
      ADD_FAILURE() << c.text << " was accepted";
    } catch (const std::invalid_argument& e) {
      EXPECT_NE(std::string(e.what()).find(c.named), std::string::npos) << c.text << ": " << e.what();
    }
  }
}

}  // namespace
}  // namespace worker
