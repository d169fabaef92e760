#include "platform/code_page.h"

#include <gtest/gtest.h>

#include <string>

#include "support/platform_kind.h"

namespace platform {
namespace {

std::string ansi(std::u16string_view text) { return wideToMultibyte(text, CodePage::ansi).value(); }

TEST(CodePage, AnsiRoundTripsEveryByte) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes.push_back(static_cast<char>(byte));
  EXPECT_EQ(ansi(multibyteToWide(bytes, CodePage::ansi).value()), bytes);
}

TEST(CodePage, AnsiIsWindows1252WithAQuestionMarkForEachUnitThatItLacks) {
  EXPECT_EQ(ansi(u"\u20AC \u0160\u017E \u2013 \u00E9\u00FF"), "\x80 \x8A\x9E \x96 \xE9\xFF");
  EXPECT_EQ(multibyteToWide("\x80\x92\x9F\x81", CodePage::ansi), u"\u20AC\u2019\u0178\u0081");
  EXPECT_EQ(ansi(u"\u0416" + std::u16string(u"a\U0001F3A8b") + char16_t{0xD800}), "?a??b?");
  EXPECT_EQ(ansi(u""), "");
}

TEST(CodePage, Utf8ReplacesWhatIsNotText) {
  EXPECT_EQ(wideToMultibyte(u"\u00E4\u20AC\U0001F3A8", CodePage::utf8), "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xA8");
  EXPECT_EQ(multibyteToWide("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xA8", CodePage::utf8), u"\u00E4\u20AC\U0001F3A8");
  EXPECT_EQ(wideToMultibyte(std::u16string{0xDC00, u'z'}, CodePage::utf8), "\xEF\xBF\xBDz");
  for (const char* const malformed : {"\x80z", "\xC3z", "\xFFz", "\xC0z"}) {
    EXPECT_EQ(multibyteToWide(malformed, CodePage::utf8), u"\uFFFDz") << malformed;
  }
  if (support::kIsWindows) return;  // where it is the system's affair how many stand for what cannot be read
  // Overlong, surrogate, beyond the last code point, cut off: each byte by itself.
  for (const std::string malformed : {"\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82"}) {
    EXPECT_EQ(multibyteToWide(malformed, CodePage::utf8), std::u16string(malformed.size(), u'\uFFFD')) << malformed;
  }
}

}  // namespace
}  // namespace platform
