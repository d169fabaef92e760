#include "platform/code_page.h"

#include "platform/posix/native_text.h"
#include "platform/posix/windows_1252.h"

namespace platform {

namespace {

thread_local std::uint32_t lastError = 0;

// Only a page that does not exist fails: UTF-8 takes U+FFFD and the ANSI page '?' for what cannot be converted.
bool isKnown(CodePage page) {
  if (page == CodePage::ansi || page == CodePage::utf8) return true;
  lastError = 87;  // ERROR_INVALID_PARAMETER
  return false;
}

}  // namespace

std::optional<std::string> wideToMultibyte(std::u16string_view text, CodePage page) {
  if (!isKnown(page)) return std::nullopt;
  if (page == CodePage::utf8) return posix::toNative(text);
  std::string bytes;
  bytes.reserve(text.size());
  // Unit by unit, as Windows does: a pair of surrogates gives two question marks.
  for (const char16_t unit : text) bytes.push_back(posix::toWindows1252(unit));
  return bytes;
}

std::optional<std::u16string> multibyteToWide(std::string_view text, CodePage page) {
  if (!isKnown(page)) return std::nullopt;
  if (page == CodePage::utf8) return posix::toWide(text);
  std::u16string wide;
  wide.reserve(text.size());
  for (const char byte : text) wide.push_back(posix::fromWindows1252(static_cast<unsigned char>(byte)));
  return wide;
}

std::uint32_t lastCodePageError() { return lastError; }

}  // namespace platform
