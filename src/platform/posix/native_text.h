// Between the UTF-8 of this system's interfaces and UTF-16.
#pragma once

#include <string>
#include <string_view>

namespace platform::posix {

// Each byte that is no part of a valid sequence becomes U+FFFD.
std::u16string toWide(std::string_view utf8);
// An unpaired surrogate becomes U+FFFD.
std::string toNative(std::u16string_view text);

// The user's home folder without a trailing separator; empty when there is none.
std::string homeFolder();

}  // namespace platform::posix
