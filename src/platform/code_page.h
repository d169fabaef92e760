// Conversions between UTF-16 and the 8-bit code pages of the system.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// ansi is the system's ANSI code page; where there is none (everything but Windows) Windows-1252 stands for it.
enum class CodePage { ansi, utf8 };

// Characters that the code page lacks become '?'. nullopt when the system reports an error; lastCodePageError() tells
// which. On POSIX the ANSI conversion never fails: an unpaired surrogate becomes '?'.
std::optional<std::string> wideToMultibyte(std::u16string_view text, CodePage page);
// Bytes that the code page leaves undefined become the C1 control of the same number.
std::optional<std::u16string> multibyteToWide(std::string_view text, CodePage page);
std::uint32_t lastCodePageError();

}  // namespace platform
