// UTF-8 of files and terminals to UTF-16 of the host and back.
#pragma once

#include <string>
#include <string_view>

#include "platform/code_page.h"

namespace hostkit::services {

// What cannot be converted is given as an empty text.
inline std::u16string toWide(std::string_view text) {
  return platform::multibyteToWide(text, platform::CodePage::utf8).value_or(u"");
}
inline std::string toUtf8(std::u16string_view text) {
  return platform::wideToMultibyte(text, platform::CodePage::utf8).value_or("");
}

}  // namespace hostkit::services
