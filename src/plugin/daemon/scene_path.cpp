#include "plugin/daemon/scene_path.h"

#include <string_view>

namespace corvantis {
namespace {

constexpr auto npos = std::u16string_view::npos;

bool isSeparator(std::u16string_view path, std::size_t index) { return index < path.size() && path[index] == u'\\'; }
bool isNetwork(std::u16string_view path) { return isSeparator(path, 0) && isSeparator(path, 1); }

// Where the last element starts. A trailing separator is an element of its own.
std::size_t startOfLastElement(std::u16string_view path) {
  if (path.size() == 2 && isNetwork(path)) return 0;
  if (path.ends_with(u'\\')) return path.size() - 1;
  std::size_t before = path.rfind(u'\\');
  if (before == npos && path.size() > 1) before = path.rfind(u':', path.size() - 2);
  const bool isServer = before == 1 && isSeparator(path, 0);
  return before == npos || isServer ? 0 : before + 1;
}

// The index of the separator that stands for the root folder; npos when there is none.
std::size_t rootSeparator(std::u16string_view path) {
  if (path.size() > 2 && path[1] == u':' && isSeparator(path, 2)) return 2;
  if (path.size() == 2 && isNetwork(path)) return npos;
  if (path.size() > 4 && path.starts_with(u"\\\\?\\")) return path.find(u'\\', 4);
  if (path.size() > 3 && isNetwork(path) && !isSeparator(path, 2)) return path.find(u'\\', 2);
  return isSeparator(path, 0) ? 0 : npos;
}

// Whether the separator at `index` belongs to a run of them that is the path's root.
bool belongsToRoot(std::u16string_view path, std::size_t index) {
  while (index > 0 && isSeparator(path, index - 1)) --index;
  if (index == 0) return true;
  const auto isLetter = [](char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); };
  if (index == 2 && isLetter(path[0]) && path[1] == u':') return true;
  return index > 2 && isNetwork(path) && path.find(u'\\', 2) == index;
}

std::u16string_view fileNameOf(std::u16string_view path, std::size_t start) {
  if (start > 0 && isSeparator(path, start) && !belongsToRoot(path, start)) return u".";
  return path.substr(start);
}

std::u16string_view folderOf(std::u16string_view path, std::size_t start) {
  const std::size_t root = rootSeparator(path.substr(0, start));
  std::size_t end = start;
  while (end > 0 && end - 1 != root && isSeparator(path, end - 1)) --end;
  const bool separatorInRootFolder = end == 1 && root == 0 && isSeparator(path, start);
  return separatorInRootFolder ? std::u16string_view() : path.substr(0, end);
}

}  // namespace

ScenePath splitScenePath(const std::u16string& path) {
  const std::size_t start = startOfLastElement(path);
  return {std::u16string(fileNameOf(path, start)), std::u16string(folderOf(path, start))};
}

}  // namespace corvantis
