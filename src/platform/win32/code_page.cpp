#include "platform/code_page.h"

#include <windows.h>

#include <climits>

#include "platform/win32/wide.h"

namespace platform {
namespace {

thread_local std::uint32_t lastError = 0;

// A number that is no page's for what is no page, so that the system refuses it.
UINT numberOf(CodePage page) {
  if (page == CodePage::ansi) return CP_ACP;
  return page == CodePage::utf8 ? CP_UTF8 : ~UINT{0};
}

// The calls count in int, and take no empty text.
bool fits(std::size_t size) {
  if (size <= INT_MAX) return true;
  lastError = ERROR_INVALID_PARAMETER;
  return false;
}

}  // namespace

std::optional<std::string> wideToMultibyte(std::u16string_view text, CodePage page) {
  if (text.empty()) return std::string();
  if (!fits(text.size())) return std::nullopt;
  const int units = static_cast<int>(text.size());
  const auto convert = [&](char* out, int room) {
    return ::WideCharToMultiByte(numberOf(page), 0, win32::units(text), units, out, room, nullptr, nullptr);
  };
  const int size = convert(nullptr, 0);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  if (size > 0 && convert(bytes.data(), size) == size) return bytes;
  lastError = ::GetLastError();
  return std::nullopt;
}

std::optional<std::u16string> multibyteToWide(std::string_view text, CodePage page) {
  if (text.empty()) return std::u16string();
  if (!fits(text.size())) return std::nullopt;
  const int bytes = static_cast<int>(text.size());
  const auto convert = [&](wchar_t* out, int room) {
    return ::MultiByteToWideChar(numberOf(page), 0, text.data(), bytes, out, room);
  };
  const int size = convert(nullptr, 0);
  std::u16string wide(static_cast<std::size_t>(size), u'\0');
  if (size > 0 && convert(win32::buffer(wide), size) == size) return wide;
  lastError = ::GetLastError();
  return std::nullopt;
}

std::uint32_t lastCodePageError() { return lastError; }

}  // namespace platform
