#include "hostkit/script/syntax/source.h"

#include <utf8.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "hostkit/script/syntax/text.h"
#include "platform/code_page.h"
#include "platform/files.h"

namespace hostkit::script {
namespace {

// Steps over one line end at `i` and tells whether there was one.
bool skipLineEnd(std::u16string_view text, std::size_t& i) {
  if (text[i] == u'\r') {
    i += i + 1 < text.size() && text[i + 1] == u'\n' ? 2 : 1;
    return true;
  }
  if (text[i] != u'\n') return false;
  ++i;
  return true;
}

std::u16string decodeUtf16(std::string_view bytes, bool bigEndian) {
  std::u16string out;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto first = static_cast<unsigned char>(bytes[i]), second = static_cast<unsigned char>(bytes[i + 1]);
    out += static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
  }
  return out;
}

}  // namespace

LineColumn Source::lineColumn(std::size_t offset) const {
  LineColumn at;
  std::size_t lineStart = 0;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t before = i;
    if (!skipLineEnd(text, i)) {
      ++i;
    } else if (before < offset && i <= offset) {
      ++at.line;
      lineStart = i;
    }
    if (i >= offset) break;
  }
  at.column = offset - lineStart + 1;
  return at;
}

std::u16string_view Source::line(std::size_t number) const {
  std::size_t start = 0, current = 1;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t before = i;
    if (!skipLineEnd(text, i)) {
      ++i;
    } else if (current++ == number) {
      return std::u16string_view(text).substr(start, before - start);
    } else {
      start = i;
    }
  }
  return current == number ? std::u16string_view(text).substr(start) : std::u16string_view();
}

std::u16string decodeScript(std::string_view bytes) {
  if (bytes.substr(0, 3) == "\xEF\xBB\xBF") return fromUtf8(bytes.substr(3));
  if (bytes.substr(0, 2) == "\xFF\xFE") return decodeUtf16(bytes.substr(2), false);
  if (bytes.substr(0, 2) == "\xFE\xFF") return decodeUtf16(bytes.substr(2), true);
  if (utf8::is_valid(bytes.begin(), bytes.end())) return fromUtf8(bytes);
  return platform::multibyteToWide(bytes, platform::CodePage::ansi).value_or(u"");
}

std::optional<std::string> readBytes(const std::u16string& path) {
  const std::filesystem::path native = platform::nativePath(path);
  std::error_code error;
  if (std::filesystem::is_directory(native, error)) return std::nullopt;
  std::ifstream file(native, std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

std::shared_ptr<const Source> readSource(const std::u16string& path) {
  const auto bytes = readBytes(path);
  if (!bytes) return nullptr;
  return std::make_shared<const Source>(Source{path, decodeScript(*bytes)});
}

}  // namespace hostkit::script
