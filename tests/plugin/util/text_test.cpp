#include "plugin/util/text.h"

#include <gmock/gmock.h>
#include <utf8.h>

#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <cmath>
#include <limits>
#include <locale>

namespace corvantis {
namespace {

using namespace std::string_literals;

constexpr auto kNoSuchPage = static_cast<platform::CodePage>(99);

TEST(CodePageText, ConvertsInTheAnsiPageUpToTheFirstNul) {
  EXPECT_EQ(to_string(u""s), "");
  EXPECT_EQ(to_string(u"abc\0def"s), "abc");
  EXPECT_EQ(to_wstring("abc\0def"s), u"abc");
  EXPECT_EQ(to_string(u"\u20AC \u65E5 end\xD83D"s), "\x80 ? end?");  // no UTF-16, but no reason for the fallback either
  EXPECT_EQ(to_wstring("\x80\xFC"s), u"\u20AC\u00FC");
  EXPECT_EQ(to_string(static_cast<const char16_t*>(nullptr)), "");
  EXPECT_EQ(to_wstring(static_cast<const char*>(nullptr)), u"");
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
  const std::pair<std::u16string, std::string> rows[] = {
      {u"", ""},
      {u"plain", "plain"},
      {u"a\0b"s, "a\0b"s},
      {u"\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF",
       "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"},
      {u"\U00010000\U0010FFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
  };
  for (const auto& [wide, bytes] : rows) {
    EXPECT_EQ(to_utf8(wide), bytes);
    EXPECT_EQ(from_utf8(bytes), wide);
  }
}

TEST(Utf8Text, ReadsPointersUpToTheirNulAndNarrowTextAsAnsi) {
  EXPECT_EQ(to_utf8(u"abc\0def"), "abc");
  EXPECT_EQ(to_utf8(static_cast<const char16_t*>(nullptr)), "");
  EXPECT_EQ(to_utf8(static_cast<const char*>(nullptr)), "");
  EXPECT_EQ(to_utf8("\x80 \xFC"), "\xE2\x82\xAC \xC3\xBC");
  EXPECT_EQ(to_utf8("\x80 \xFC"s), "\xE2\x82\xAC \xC3\xBC");
}

TEST(Utf8Text, RefusesUnpairedSurrogates) {
  // A lead at the end, a lead without its trail, two leads, a trail on its own.
  for (const std::u16string& text : {u"a\xD83D"s, u"\xD83Dz"s, u"\xD83D\xD83D"s, u"a\xDE00 b"s})
    EXPECT_THAT([&] { to_utf8(text); }, testing::ThrowsMessage<utf8::invalid_utf16>("Invalid UTF-16"));
}

template <class Error>
void expectRefused(const std::string& bytes, const char* text) {
  EXPECT_THAT([&] { from_utf8(bytes); }, testing::ThrowsMessage<Error>(text)) << testing::PrintToString(bytes);
}

TEST(Utf8Text, RefusesMalformedBytesWithTheFittingError) {
  // A continuation byte first, never a lead byte, not continued (twice), overlong forms.
  for (const char* bytes : {"\x80", "\xFF", "\xC3(", "\xE2\x82(", "\xC0\x80", "\xE0\x80\x80", "\xF0\x8F\xBF\xBF"})
    expectRefused<utf8::invalid_utf8>(bytes, "Invalid UTF-8");
  // A surrogate, above 10FFFF.
  for (const char* bytes : {"\xED\xA0\x80", "\xF4\x90\x80\x80"})
    expectRefused<utf8::invalid_code_point>(bytes, "Invalid code point");
  for (const char* cutOff : {"ok\xC3", "\xE2\x82", "\xF0\x9F\x98"})
    expectRefused<utf8::not_enough_room>(cutOff, "Not enough space");
}

TEST(ReplaceAll, GoesOnBehindEachReplacement) {
  EXPECT_EQ(replace_all(u"aXa", u"a", u"aa"), u"aaXaa");
  EXPECT_EQ(replace_all(u"a/b//c", u"/", u"\\"), u"a\\b\\\\c");
  EXPECT_EQ(replace_all(u"aaa", u"aa", u"b"), u"ba");
  EXPECT_EQ(replace_all(u"aaa", u"a", u""), u"");
  EXPECT_EQ(replace_all(u"", u"a", u"b"), u"");
  EXPECT_EQ(replace_all(u"abc", u"", u"x"), u"abc");
}

constexpr const char* kBadCast = "bad lexical cast: source type value could not be interpreted as target";

// A locale that writes 1.234,5: nothing here may listen to it.
class CommaPunctuation : public std::numpunct<char> {
 protected:
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

class Numbers : public testing::Test {
 protected:
  ~Numbers() override { std::locale::global(previous_); }

 private:
  const std::locale previous_ = std::locale::global(std::locale(std::locale(), new CommaPunctuation));
};

TEST_F(Numbers, AreWritten) {
  EXPECT_EQ(to_string(0), "0");
  EXPECT_EQ(to_string(std::numeric_limits<std::int32_t>::min()), "-2147483648");
  EXPECT_EQ(to_string(-1234567L), "-1234567");
  EXPECT_EQ(to_string(4000000000UL), "4000000000");
  EXPECT_EQ(to_string(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
  EXPECT_EQ(to_wstring(-5), u"-5");
  EXPECT_EQ(to_wstring(std::uint64_t{10000000000}), u"10000000000");
  EXPECT_EQ(to_wstring(true), u"1");
  EXPECT_EQ(to_wstring(false), u"0");
}

TEST_F(Numbers, WithFractionAreWrittenWithSixDigits) {
  const struct {
    float value;
    const char* text;
  } rows[] = {
      {0.0F, "0"},        {-0.0F, "-0"},       {1.5F, "1.5"},   {50.0F, "50"},         {33.333333F, "33.3333"},
      {1e-7F, "1e-07"},   {0.0001F, "0.0001"}, {1e6F, "1e+06"}, {123456.0F, "123456"}, {1234567.0F, "1.23457e+06"},
      {HUGE_VALF, "inf"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(to_string(row.value), row.text);
    EXPECT_EQ(to_wstring(row.value), to_wstring(std::string(row.text)));
  }
}

TEST_F(Numbers, ThatAreIntegersAreRead) {
  const struct {
    std::u16string text;
    std::int32_t value;
  } rows[] = {
      {u"0", 0},
      {u"5", 5},
      {u"+5", 5},
      {u"-5", -5},
      {u"-0", 0},
      {u"007", 7},
      {u"2147483647", 2147483647},
      {u"-2147483648", -2147483647 - 1},
  };
  for (const auto& row : rows) EXPECT_EQ(parse_int32(row.text), row.value) << to_string(row.text);
}

TEST_F(Numbers, ThatAreNoIntegersAreRefused) {
  for (const std::u16string& text :
       {u""s,     u" 5"s,    u"5 "s,     u"\t5"s,        u"+"s,           u"-"s,
        u"--5"s,  u"+-5"s,   u"5-"s,     u"1 2"s,        u"1.0"s,         u"1e3"s,
        u"0x10"s, u"1,000"s, u"1.000"s,  u"2147483648"s, u"-2147483649"s, u"99999999999999999999"s,
        u"five"s, u"5\0"s,   u"\uFF15"s, u"\u0665"s}) {
    EXPECT_THAT([&] { parse_int32(text); }, testing::ThrowsMessage<boost::bad_lexical_cast>(kBadCast)) << to_utf8(text);
  }
}

TEST_F(Numbers, WithFractionAreRead) {
  const struct {
    std::u16string text;
    float value;
  } rows[] = {
      {u"0", 0.0F},       {u"1.5", 1.5F},
      {u"+1.5", 1.5F},    {u"-.5", -0.5F},
      {u"5.", 5.0F},      {u"1e3", 1000.0F},
      {u"1E+3", 1000.0F}, {u"25e-1", 2.5F},
      {u"0.1", 0.1F},     {u"16777217", 16777216.0F},
      {u"1e-60", 0.0F},   {u"3.4028235e38", std::numeric_limits<float>::max()},
  };
  for (const auto& row : rows) EXPECT_EQ(parse_float(row.text), row.value) << to_string(row.text);
  for (const auto* text : {u"inf", u"INF", u"+Infinity"})
    EXPECT_TRUE(parse_float(text) > 1e38F && std::isinf(parse_float(text)));
  EXPECT_TRUE(std::isinf(parse_float(u"-inf")) && parse_float(u"-inf") < 0);
  for (const auto* text : {u"nan", u"NaN", u"-NAN", u"+nan"}) EXPECT_TRUE(std::isnan(parse_float(text)));
}

TEST_F(Numbers, WithFractionInAnyOtherFormAreRefused) {
  for (const std::u16string& text :
       {u""s,        u" 1.5"s, u"1.5 "s, u"\n1"s, u"1,5"s,  u"1.5f"s,  u"1e"s,     u"1E"s,   u"1e+"s,    u"1-"s,
        u"+"s,       u"."s,    u"e5"s,   u"--1"s, u"0x10"s, u"0x1p3"s, u"1.2.3"s,  u"1e39"s, u"-1e39"s,  u"infin"s,
        u"infinit"s, u"inf "s, u" nan"s, u"na"s,  u"i"s,    u"+-inf"s, u"\uFF11"s, u"1\0"s,  u"1.234,5"s}) {
    EXPECT_THAT([&] { parse_float(text); }, testing::ThrowsMessage<boost::bad_lexical_cast>(kBadCast)) << to_utf8(text);
  }
}

TEST_F(Numbers, ThatAreFlagsAreRead) {
  for (const auto* text : {u"1", u"01", u"0001", u"+1", u"+01"}) EXPECT_TRUE(parse_bool(text)) << to_string(text);
  for (const auto* text : {u"0", u"00", u"+0", u"-0", u"-000"}) EXPECT_FALSE(parse_bool(text)) << to_string(text);
  for (const std::u16string& text : {u""s, u"-1"s, u"-01"s, u"2"s, u"10"s, u"true"s, u"false"s, u"True"s, u"yes"s,
                                     u" 1"s, u"1 "s, u"+"s, u"-"s, u"++1"s, u"1.0"s, u"4294967297"s, u"\uFF11"s}) {
    EXPECT_THAT([&] { parse_bool(text); }, testing::ThrowsMessage<boost::bad_lexical_cast>(kBadCast)) << to_utf8(text);
  }
}

}  // namespace
}  // namespace corvantis
