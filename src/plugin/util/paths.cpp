#include "plugin/util/paths.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "plugin/util/text.h"

namespace corvantis {
namespace {

constexpr std::size_t kNone = std::u16string_view::npos;

bool isSeparatorAt(std::u16string_view path, std::size_t at) { return at < path.size() && path[at] == u'\\'; }

// These functions take a path whose separators are all backslashes.

// Where the last component starts; the path's length when it ends in a separator.
std::size_t componentStart(std::u16string_view path) {
  const std::size_t separator = path.rfind(u'\\');
  if (separator != kNone) {
    const bool nothingButServer = separator == 1 && path.size() > 2 && path[0] == u'\\';
    return nothingButServer ? 0 : separator + 1;
  }
  // "C:name" has a folder part, "C:" alone has not.
  const std::size_t colon = path.size() > 1 ? path.rfind(u':', path.size() - 2) : kNone;
  return colon == kNone ? 0 : colon + 1;
}

// The position of the separator that stands for the root folder; kNone when the path is relative.
std::size_t rootSeparator(std::u16string_view path) {
  if (path.size() > 2 && path[1] == u':' && path[2] == u'\\') return 2;
  if (path.size() > 2 && path[0] == u'\\' && path[1] == u'\\' && path[2] != u'\\') return path.find(u'\\', 2);
  return isSeparatorAt(path, 0) ? 0 : kNone;
}

// The folder part without its trailing separators, but with the one at `root`.
std::u16string_view withoutTrailingSeparators(std::u16string_view folder, std::size_t root) {
  while (!folder.empty() && folder.back() == u'\\' && folder.size() - 1 != root) folder.remove_suffix(1);
  return folder;
}

// A separator at the end is a component of its own.
std::size_t sceneNameStart(std::u16string_view path) {
  if (path == u"\\\\") return 0;
  return path.ends_with(u'\\') ? path.size() - 1 : componentStart(path);
}

std::size_t sceneRootSeparator(std::u16string_view path) {
  const bool isVerbatim = path.size() > 4 && path.starts_with(u"\\\\?\\");
  return isVerbatim ? path.find(u'\\', 4) : rootSeparator(path);
}

// Whether the separator at `at` belongs to a run of them that is the path's root.
bool belongsToRoot(std::u16string_view path, std::size_t at) {
  while (at > 0 && isSeparatorAt(path, at - 1)) --at;
  const auto isLetter = [](char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); };
  if (at == 0 || (at == 2 && isLetter(path[0]) && path[1] == u':')) return true;
  return at > 2 && path.starts_with(u"\\\\") && path.find(u'\\', 2) == at;
}

}  // namespace

std::u16string normalize_path(std::u16string path) {
  std::replace(path.begin(), path.end(), u'/', u'\\');
  const bool isNetworkPath = path.size() > 1 && path[0] == u'\\' && path[1] == u'\\';
  if (isNetworkPath) path[1] = u'X';
  path = replace_all(std::move(path), u"\\\\", u"\\");
  if (isNetworkPath) path[1] = u'\\';
  return path;
}

std::u16string ensure_trailing_backslash(std::u16string folder) {
  if (!folder.empty() && folder.back() != u'\\') folder.push_back(u'\\');
  return folder;
}

std::u16string parent_of(const std::u16string& path) {
  const std::u16string normal = normalize_path(path);
  const std::u16string_view folder = std::u16string_view(normal).substr(0, componentStart(normal));
  return std::u16string(withoutTrailingSeparators(folder, rootSeparator(normal)));
}

std::u16string file_name_of(const std::u16string& path) {
  const std::u16string normal = normalize_path(path);
  if (!normal.empty() && normal.back() == u'\\') return u".";
  return normal.substr(componentStart(normal));
}

std::u16string stem_of(const std::u16string& path) {
  const std::u16string name = file_name_of(path);
  return name.substr(0, name.rfind(u'.'));
}

std::u16string extension_of(const std::u16string& path) {
  const std::u16string name = file_name_of(path);
  const std::size_t dot = name.rfind(u'.');
  return dot == kNone || name == u"." || name == u".." ? std::u16string() : name.substr(dot);
}

std::u16string replace_file_name(const std::u16string& path, const std::u16string& tail) {
  std::u16string result = parent_of(path);
  const bool needsSeparator = !result.empty() && std::u16string_view(u"\\/:").find(result.back()) == kNone;
  if (needsSeparator) result.push_back(u'\\');
  return result + stem_of(path) + tail;
}

std::u16string pad_frame_number(std::int32_t number, std::size_t width) {
  std::u16string digits = to_wstring(std::llabs(number));
  const std::u16string sign = number < 0 ? u"-" : u"";
  const std::size_t length = digits.size() + sign.size();
  if (length < width) digits.insert(0, width - length, u'0');
  return sign + digits;
}

std::u16string make_numbered_name(const std::u16string& name, std::int32_t number) {
  return ensure_trailing_backslash(parent_of(name)) + stem_of(name) + pad_frame_number(number, 4) + extension_of(name);
}

ScenePath splitScenePath(const std::u16string& path) {
  const std::size_t start = sceneNameStart(path);
  const bool endsInSeparator = start > 0 && isSeparatorAt(path, start);
  std::u16string_view folder = std::u16string_view(path).substr(0, start);
  folder = withoutTrailingSeparators(folder, sceneRootSeparator(folder));
  if (endsInSeparator && folder == u"\\") folder = {};
  return {endsInSeparator && !belongsToRoot(path, start) ? u"." : path.substr(start), std::u16string(folder)};
}

}  // namespace corvantis
