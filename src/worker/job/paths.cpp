#include "worker/job/paths.h"

#include <filesystem>

#include "platform/code_page.h"
#include "platform/files.h"

namespace worker {

std::string absolutePath(const std::string& path, const std::string& folder) {
  namespace fs = std::filesystem;
  return path.empty() ? path : fs::absolute(fs::path(folder) / path).lexically_normal().string();
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
