#include "hostkit/script/syntax/text.h"

#include <algorithm>

namespace hostkit::script {

std::string narrow(std::u16string_view text) {
  std::string out;
  for (char16_t c : text) out += c < 0x80 ? static_cast<char>(c) : '?';
  return out;
}

char16_t foldCase(char16_t c) {
  if (c < 0x80) return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
  if ((c >= 0xC0 && c <= 0xDE && c != 0xD7) || (c >= 0x391 && c <= 0x3A9) || (c >= 0x410 && c <= 0x42F))
    return static_cast<char16_t>(c + 32);
  if (c >= 0x400 && c <= 0x40F) return static_cast<char16_t>(c + 80);
  if (c >= 0x100 && c <= 0x137) return static_cast<char16_t>(c | 1);
  return c;
}

char16_t upperCase(char16_t c) {
  if (c < 0x80) return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c;
  for (int distance : {32, 80, 1}) {
    const auto candidate = static_cast<char16_t>(c - distance);
    if (candidate != c && foldCase(candidate) == c) return candidate;
  }
  return c;
}

std::u16string fold(std::u16string_view text) {
  std::u16string out(text);
  std::transform(out.begin(), out.end(), out.begin(), foldCase);
  return out;
}

int compareFolded(std::u16string_view a, std::u16string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    const int difference = int{foldCase(a[i])} - int{foldCase(b[i])};
    if (difference != 0) return difference;
  }
  return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

bool equalFolded(std::u16string_view a, std::u16string_view b) {
  return a.size() == b.size() && compareFolded(a, b) == 0;
}

int hexDigit(char16_t c) {
  if (isDigit(c)) return c - u'0';
  const char16_t folded = foldCase(c);
  return folded >= u'a' && folded <= u'f' ? folded - u'a' + 10 : -1;
}

std::u16string_view trimmed(std::u16string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool matchesPattern(std::u16string_view text, std::u16string_view pattern, bool ignoreCase) {
  const auto same = [&](char16_t a, char16_t b) { return a == b || (ignoreCase && foldCase(a) == foldCase(b)); };
  std::size_t t = 0, p = 0, star = std::u16string_view::npos, retry = 0;
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == u'*') {
      star = p++;
      retry = t;
    } else if (p < pattern.size() && (pattern[p] == u'?' || same(text[t], pattern[p]))) {
      ++t;
      ++p;
    } else if (star != std::u16string_view::npos) {
      p = star + 1;
      t = ++retry;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == u'*') ++p;
  return p == pattern.size();
}

}  // namespace hostkit::script
