#include "hostkit/script/machine/folders.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "hostkit/script/syntax/text.h"
#include "platform/files.h"

namespace hostkit::script {
namespace {

namespace fs = std::filesystem;

// In alphabetical order. All but `scripts` and `temp` lie in a folder of their own below the temporary one.
constexpr std::array<std::u16string_view, 24> kNames{
    u"archives", u"autoback",       u"defaults",     u"export",        u"expression",  u"image",
    u"import",   u"matlib",         u"maxdata",      u"maxroot",       u"plugcfg",     u"preview",
    u"proxies",  u"renderassets",   u"renderoutput", u"renderpresets", u"scene",       u"scripts",
    u"sound",    u"startupscripts", u"temp",         u"usermacros",    u"userscripts", u"vpost"};

}  // namespace

std::optional<std::u16string> folderNamed(const EngineOptions& options, std::u16string_view name) {
  if (!std::binary_search(kNames.begin(), kNames.end(), name)) return std::nullopt;
  if (name == u"scripts" && !options.scriptFolders.empty()) return options.scriptFolders.front();
  std::error_code error;
  fs::path folder = fs::temp_directory_path(error);
  if (name != u"temp") folder /= fs::path("Corvantis") / toUtf8(name);
  if (options.fileAccess) fs::create_directories(folder, error);
  return platform::windowsPath(folder.string());
}

std::u16string expandedPath(const EngineOptions& options, std::u16string_view path) {
  if (path.starts_with(u'$')) {
    const std::size_t end = std::min(path.find_first_of(u"\\/"), path.size());
    if (auto folder = folderNamed(options, fold(path.substr(1, end - 1)))) return folder->append(path.substr(end));
  }
  return std::u16string(path);
}

}  // namespace hostkit::script
