#include "worker/job/paths.h"

#include <fmt/format.h>

#include <filesystem>
#include <stdexcept>

#include "platform/code_page.h"
#include "platform/files.h"

namespace worker {

std::string absolutePath(const std::string& path, const std::string& folder) {
  namespace fs = std::filesystem;
  if (path.empty()) return path;
  std::string whole = fs::absolute(fs::path(folder) / path).lexically_normal().string();
  if (fs::path::preferred_separator != '\\' && whole.find('\\') != std::string::npos)
    throw std::invalid_argument(
        fmt::format("{}: expected a name without a backslash, which hosts take for a separator", whole));
  return whole;
}

std::string windowsName(const std::string& nativePath) {
  const auto text = platform::wideToMultibyte(platform::windowsPath(nativePath), platform::CodePage::utf8);
  return text ? *text : nativePath;
}

std::string nativeName(const std::string& windowsPath) {
  const auto text = platform::multibyteToWide(windowsPath, platform::CodePage::utf8);
  return text ? platform::nativePath(*text) : windowsPath;
}

}  // namespace worker
