#include "plugin/daemon/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace corvantis {
namespace {

using Fields = std::vector<std::u16string>;

TEST(CommandLine, SplitsIntoFields) {
  const std::pair<std::u16string, Fields> cases[] = {
      {u"", {}},
      {u"EndJob", {u"EndJob"}},
      {u"a,b", {u"a", u"b"}},
      {u"a,,b", {u"a", u"", u"b"}},
      {u"a,", {u"a", u""}},
      {u",", {u"", u""}},
      {u" a , b ", {u" a ", u" b "}},
      {u"\"a\",b", {u"a", u"b"}},
      {u"\"\"", {u""}},
      {u"\"a\"b", {u"ab"}},
      {u"a\"b,c\"d,e", {u"ab,cd", u"e"}},
      {u"\"never closed,x", {u"never closed,x"}},
      {u"C:\\\\a\\\\b.max,D:/c", {u"C:\\a\\b.max", u"D:/c"}},
      {u"\\\"x\\\",1\\,2", {u"\"x\"", u"1,2"}},
      {u"one\\ntwo", {u"one\ntwo"}},
      {u"\"one\\ntwo\\\\\"", {u"one\ntwo\\"}},
      {u"\u00e9\u4e2d\U0001F600,x", {u"\u00e9\u4e2d\U0001F600", u"x"}},
      {std::u16string(u"a\0b,c", 5), {std::u16string(u"a\0b", 3), u"c"}},
  };
  for (const auto& [line, fields] : cases) EXPECT_EQ(splitCommandLine(line), fields) << testing::PrintToString(line);
}

TEST(CommandLine, RefusesWhatItCannotSplit) {
  const std::pair<std::u16string, std::string> cases[] = {
      {u"StartJob,C:\\scenes\\a.max", "unknown escape sequence"},
      {u"\\t", "unknown escape sequence"},
      {u"\\N", "unknown escape sequence"},
      {u"\\", "cannot end with escape"},
      {u"a,\"b\\", "cannot end with escape"},
  };
  for (const auto& [line, text] : cases) {
    try {
      splitCommandLine(line);
      ADD_FAILURE() << testing::PrintToString(line) << " was split";
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(error.what(), text);
    }
  }
}

}  // namespace
}  // namespace corvantis
