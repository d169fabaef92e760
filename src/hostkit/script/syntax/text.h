// Small operations on UTF-16 text.
#pragma once

#include <string>
#include <string_view>

#include "hostkit/text/utf8.h"

namespace hostkit::script {

// ASCII to UTF-16.
inline std::u16string widen(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }
// UTF-16 to ASCII, '?' for the rest: for number syntax and formats.
std::string narrow(std::u16string_view text);

// One code unit without regard to case: Latin, Greek and Cyrillic letters fold, everything else stays.
char16_t foldCase(char16_t c);
char16_t upperCase(char16_t c);
std::u16string fold(std::u16string_view text);
bool equalFolded(std::u16string_view a, std::u16string_view b);
int compareFolded(std::u16string_view a, std::u16string_view b);

inline bool isDigit(char16_t c) { return c >= u'0' && c <= u'9'; }
int hexDigit(char16_t c);  // -1: not one
inline bool isLetter(char16_t c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' || c >= 0x80;
}
// What separates tokens and is trimmed, line ends included.
inline bool isBlank(char16_t c) {
  return c == u' ' || (c >= 9 && c <= 13) || c == 0 || c == 0x1A || c == 0xA0 || c == 0x3000 || c == 0xFEFF;
}

std::u16string_view trimmed(std::u16string_view text);

// '*' any run, '?' one character.
bool matchesPattern(std::u16string_view text, std::u16string_view pattern, bool ignoreCase);

}  // namespace hostkit::script
