#include "hostkit/text/utf8.h"

#include <utf8.h>

#include <iterator>

namespace hostkit {

std::string toUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t code = text[i];
    const bool lead = code >= 0xD800 && code < 0xDC00;
    if (lead && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
      code = 0x10000 + ((code - 0xD800) << 10) + (text[++i] - 0xDC00u);
    } else if (code >= 0xD800 && code < 0xE000) {
      code = 0xFFFD;
    }
    utf8::unchecked::append(code, std::back_inserter(out));
  }
  return out;
}

std::u16string fromUtf8(std::string_view bytes) {
  std::string valid;
  utf8::replace_invalid(bytes.begin(), bytes.end(), std::back_inserter(valid));
  std::u16string out;
  utf8::utf8to16(valid.begin(), valid.end(), std::back_inserter(out));
  return out;
}

}  // namespace hostkit
