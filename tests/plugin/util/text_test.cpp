#include "plugin/util/text.h"

#include <gmock/gmock.h>
#include <utf8.h>

#include <limits>

namespace corvantis {
namespace {

using namespace std::string_literals;

constexpr auto kNoSuchPage = static_cast<platform::CodePage>(99);

TEST(CodePageText, ConvertsUpToTheFirstNul) {
  EXPECT_EQ(to_string(u""s), "");
  EXPECT_EQ(to_string(u"abc\0def"s), "abc");
  EXPECT_EQ(to_wstring("abc\0def"s), u"abc");
  EXPECT_EQ(to_string(static_cast<const char16_t*>(nullptr)), "");
  EXPECT_EQ(to_wstring(static_cast<const char*>(nullptr)), u"");
}

TEST(CodePageText, ReplacesWhatTheAnsiPageLacks) {
  EXPECT_EQ(to_string(u"Gr\u00FC\u00DFe \u20AC"s),
            "Gr\xFC\xDF"
            "e \x80");
  EXPECT_EQ(to_string(u"\u65E5\u672C"s), "??");
  EXPECT_EQ(to_string(u"end\xD83D"s), "end?");  // no UTF-16, but no reason for the fallback either
  EXPECT_EQ(to_wstring("\x80\xFC"s), u"\u20AC\u00FC");
}

TEST(CodePageText, FallsBackOrThrowsWhenTheSystemReportsAnError) {
  EXPECT_EQ(convert_wide_string_to_multibyte(u"a", kNoSuchPage, "fallback"), "fallback");
  EXPECT_EQ(convert_multibyte_to_wide_string("a", kNoSuchPage, u"fallback"), u"fallback");
  EXPECT_EQ(convert_wide_string_to_multibyte(nullptr, kNoSuchPage), "");
  EXPECT_EQ(convert_multibyte_to_wide_string(nullptr, kNoSuchPage), u"");
  EXPECT_THAT([] { convert_wide_string_to_multibyte(u"a", kNoSuchPage); },
              testing::ThrowsMessage<std::runtime_error>("convert_wide_string_to_multibyte Error code: 87"));
  EXPECT_THAT([] { convert_multibyte_to_wide_string("a", kNoSuchPage); },
              testing::ThrowsMessage<std::runtime_error>("convert_multibyte_to_wide_string Error code: 87"));
}

TEST(Utf8Text, KeepsEveryCharacterBothWays) {
  const struct {
    std::u16string wide;
    std::string bytes;
  } rows[] = {
      {u"", ""},
      {u"plain", "plain"},
      {u"a\0b"s, "a\0b"s},
      {u"\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF",
       "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"},
      {u"\U00010000\U0010FFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(to_utf8(row.wide), row.bytes);
    EXPECT_EQ(from_utf8(row.bytes), row.wide);
  }
}

TEST(Utf8Text, ReadsPointersUpToTheirNulAndNullAsEmpty) {
  EXPECT_EQ(to_utf8(u"abc\0def"), "abc");
  EXPECT_EQ(to_utf8(static_cast<const char16_t*>(nullptr)), "");
  EXPECT_EQ(to_utf8(static_cast<const char*>(nullptr)), "");
}

TEST(Utf8Text, TakesNarrowTextForAnsi) {
  EXPECT_EQ(to_utf8("\x80 \xFC"), "\xE2\x82\xAC \xC3\xBC");
  EXPECT_EQ(to_utf8("\x80 \xFC"s), "\xE2\x82\xAC \xC3\xBC");
}

TEST(Utf8Text, RefusesUnpairedSurrogatesNamingTheUnit) {
  const struct {
    std::u16string text;
    std::uint16_t unit;
  } rows[] = {
      {u"a\xD83D"s, 0xD83D},       // a lead at the end
      {u"\xD83Dz"s, u'z'},         // a lead without its trail
      {u"\xD83D\xD83D"s, 0xD83D},  // two leads
      {u"a\xDE00 b"s, 0xDE00},     // a trail on its own
  };
  for (const auto& row : rows) {
    try {
      to_utf8(row.text);
      ADD_FAILURE() << "accepted, unit " << row.unit;
    } catch (const utf8::invalid_utf16& error) {
      EXPECT_EQ(error.utf16_word(), row.unit);
      EXPECT_STREQ(error.what(), "Invalid UTF-16");
    }
  }
}

TEST(Utf8Text, RefusesMalformedBytesWithTheFittingError) {
  enum class Error { utf8, codePoint, room };
  const struct {
    std::string bytes;
    Error error;
  } rows[] = {
      {"\x80", Error::utf8},                   // a continuation byte first
      {"\xFF", Error::utf8},                   // never a lead byte
      {"\xC3(", Error::utf8},                  // not continued
      {"\xE2\x82(", Error::utf8},              //
      {"\xC0\x80", Error::utf8},               // overlong forms
      {"\xE0\x80\x80", Error::utf8},           //
      {"\xF0\x8F\xBF\xBF", Error::utf8},       //
      {"\xED\xA0\x80", Error::codePoint},      // a surrogate
      {"\xF4\x90\x80\x80", Error::codePoint},  // above 10FFFF
      {"ok\xC3", Error::room},                 // cut off
      {"\xE2\x82", Error::room},               //
      {"\xF0\x9F\x98", Error::room},           //
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.bytes));
    const auto convert = [&row] { from_utf8(row.bytes); };
    switch (row.error) {
      case Error::utf8:
        EXPECT_THAT(convert, testing::ThrowsMessage<utf8::invalid_utf8>("Invalid UTF-8"));
        break;
      case Error::codePoint:
        EXPECT_THAT(convert, testing::ThrowsMessage<utf8::invalid_code_point>("Invalid code point"));
        break;
      case Error::room:
        EXPECT_THAT(convert, testing::ThrowsMessage<utf8::not_enough_room>("Not enough space"));
        break;
    }
  }
}

TEST(ReplaceAll, GoesOnBehindEachReplacement) {
  EXPECT_EQ(replace_all(u"aXa", u"a", u"aa"), u"aaXaa");
  EXPECT_EQ(replace_all(u"a/b//c", u"/", u"\\"), u"a\\b\\\\c");
  EXPECT_EQ(replace_all(u"aaa", u"aa", u"b"), u"ba");
  EXPECT_EQ(replace_all(u"aaa", u"a", u""), u"");
  EXPECT_EQ(replace_all(u"", u"a", u"b"), u"");
  EXPECT_EQ(replace_all(u"abc", u"", u"x"), u"abc");
}

}  // namespace
}  // namespace corvantis
