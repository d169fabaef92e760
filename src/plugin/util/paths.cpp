#include "plugin/util/paths.h"

#include <algorithm>
#include <cstdlib>

#include "plugin/util/text.h"

namespace corvantis {
namespace {

constexpr std::size_t kNone = std::u16string::npos;

bool isSeparatorAt(const std::u16string& path, std::size_t at) { return at < path.size() && path[at] == u'\\'; }

// Where the last component of a normalised path starts; its length when it ends in a separator.
std::size_t componentStart(const std::u16string& path) {
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
std::size_t rootSeparator(const std::u16string& path) {
  if (path.size() > 2 && path[1] == u':' && path[2] == u'\\') return 2;
  if (path.size() > 2 && path[0] == u'\\' && path[1] == u'\\' && path[2] != u'\\') return path.find(u'\\', 2);
  return isSeparatorAt(path, 0) ? 0 : kNone;
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
  std::u16string parent = normalize_path(path);
  const std::size_t root = rootSeparator(parent);
  parent.resize(componentStart(parent));
  while (!parent.empty() && parent.back() == u'\\' && parent.size() - 1 != root) parent.pop_back();
  return parent;
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

}  // namespace corvantis
