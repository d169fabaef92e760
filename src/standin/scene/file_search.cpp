#include "standin/scene/file_search.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <optional>

#include "platform/code_page.h"
#include "platform/files.h"

namespace standin::scene {

namespace {

namespace fs = std::filesystem;

bool isFile(const fs::path& path) {
  std::error_code error;
  return fs::is_regular_file(path, error);
}

// "C:..." or "\\server..."
bool isWindowsPath(const std::string& name) {
  const bool drive = name.size() >= 2 && std::isalpha(static_cast<unsigned char>(name[0])) && name[1] == ':';
  return drive || name.rfind("\\\\", 0) == 0;
}

std::string withForwardSlashes(std::string name) {
  std::replace(name.begin(), name.end(), '\\', '/');
  return name;
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::string absolutePath(const std::string& path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  return (error ? fs::path(path) : absolute).lexically_normal().string();
}

std::string folderOf(const std::string& path) { return fs::path(absolutePath(path)).parent_path().string(); }

std::string resolveName(const std::string& folder, const std::string& name) {
  if (isWindowsPath(name)) {
    const auto wide = platform::multibyteToWide(name, platform::CodePage::utf8);
    if (wide) return absolutePath(platform::nativePath(*wide));
  }
  return absolutePath((fs::path(folder) / withForwardSlashes(name)).string());
}

std::string findFile(const std::string& folder, const std::string& name,
                     const std::vector<std::string>& searchFolders) {
  if (name.empty()) return {};
  std::string beside = resolveName(folder, name);
  if (isFile(beside)) return beside;
  const fs::path plain(withForwardSlashes(name));
  for (const std::string& search : searchFolders) {
    if (plain.is_relative() && !isWindowsPath(name)) {
      std::string below = resolveName(search, name);
      if (isFile(below)) return below;
    }
    const fs::path alone = fs::path(search) / plain.filename();
    if (isFile(alone)) return absolutePath(alone.string());
  }
  return {};
}

std::string decodePercent(const std::string& uri) {
  std::string text;
  for (std::size_t i = 0; i < uri.size(); ++i) {
    const bool escape = uri[i] == '%' && i + 2 < uri.size() && hexDigit(uri[i + 1]) >= 0 && hexDigit(uri[i + 2]) >= 0;
    text += escape ? static_cast<char>(hexDigit(uri[i + 1]) * 16 + hexDigit(uri[i + 2])) : uri[i];
    if (escape) i += 2;
  }
  return text;
}

}  // namespace standin::scene
