// Between the library's UTF-16 text and that of the Windows interfaces: the same 16-bit units under two type names.
#pragma once

#include <string>
#include <string_view>

namespace platform::win32 {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

// NUL-terminated; lives as long as `text`.
inline const wchar_t* wide(const std::u16string& text) { return reinterpret_cast<const wchar_t*>(text.c_str()); }
// Not terminated.
inline const wchar_t* units(std::u16string_view text) { return reinterpret_cast<const wchar_t*>(text.data()); }
// A buffer of text.size() units that a call fills.
inline wchar_t* buffer(std::u16string& text) { return reinterpret_cast<wchar_t*>(text.data()); }

// The units up to the first NUL.
inline std::u16string text(const wchar_t* terminated) { return reinterpret_cast<const char16_t*>(terminated); }

}  // namespace platform::win32
