// UTF-8 and Windows-1252, for this folder's use: the one reading of ill-formed text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace platform::posix {

// The code point at `position`, which moves past it. A byte that begins no valid sequence (overlong forms, surrogates
// and what lies above U+10FFFF included) is U+FFFD by itself. Allocates nothing, as the next.
char32_t nextCodePoint(std::string_view utf8, std::size_t& position);
// '?' for what the code page lacks.
char toWindows1252(char32_t point);

// Between the UTF-8 of this system's interfaces and UTF-16: every byte that nextCodePoint() cannot read, and every
// unpaired surrogate, becomes U+FFFD.
std::u16string toWide(std::string_view utf8);
std::string toNative(std::u16string_view text);

}  // namespace platform::posix
