// Files and folders, by Windows paths, and taking file names apart.
#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>

#include "hostkit/script/library/library.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/elements.h"
#include "hostkit/script/syntax/text.h"
#include "platform/files.h"

namespace hostkit::script {
namespace {

namespace fs = std::filesystem;

fs::path native(const Call& call, std::size_t index) { return platform::nativePath(filePath(call, index)); }

Value doesFileExist(const Call& call) {
  std::error_code error;
  return Value::ofBoolean(fs::exists(native(call, 0), error));
}
Value doesDirectoryExist(const Call& call) {
  std::error_code error;
  return Value::ofBoolean(fs::is_directory(native(call, 0), error));
}

// A pattern's folder (with its separator) and the pattern itself.
struct Pattern {
  std::u16string folder, name;
};
Pattern split(const std::u16string& text) {
  const std::size_t slash = text.find_last_of(u"\\/");
  if (slash == std::u16string::npos) return {u"", text};
  return {text.substr(0, slash + 1), text.substr(slash + 1)};
}

void listInto(const Pattern& pattern, bool folders, bool recurse, std::vector<std::u16string>& found) {
  std::error_code error;
  const fs::path folder = pattern.folder.empty() ? fs::path(".") : fs::path(platform::nativePath(pattern.folder));
  std::vector<std::u16string> below;
  for (fs::directory_iterator each(folder, error), end; !error && each != end; each.increment(error)) {
    std::error_code ignored;
    const bool isFolder = each->is_directory(ignored);
    const std::u16string name = fromUtf8(each->path().filename().string());
    if (isFolder && recurse) below.push_back(name);
    if (isFolder != folders || !matchesPattern(name, pattern.name == u"*.*" ? u"*" : pattern.name, true)) continue;
    found.push_back(pattern.folder + name + (folders ? u"\\" : u""));
  }
  for (const std::u16string& name : below)
    listInto({pattern.folder + name + u"\\", pattern.name}, folders, recurse, found);
}

Value list(const Call& call, bool folders) {
  requireFileAccess(call.runtime);
  const Value recurse = call.keyword(u"recurse");
  std::vector<std::u16string> found;
  Pattern pattern = split(filePath(call, 0));
  if (pattern.name.empty()) pattern.name = u"*";
  listInto(pattern, folders, !recurse.isUnsupplied() && toBoolean(call.runtime, recurse), found);
  std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return compareFolded(a, b) < 0; });
  const Root made(call.runtime.heap(), call.runtime.heap().make<ArrayObject>());
  for (std::u16string& path : found)
    appendTo(call.runtime, *as<ArrayObject>(made.value), call.runtime.newString(std::move(path)));
  return made.value;
}
Value getFiles(const Call& call) { return list(call, false); }
Value getDirectories(const Call& call) { return list(call, true); }

// With all:true missing parents are made too, which is also the default.
Value makeDir(const Call& call) {
  requireFileAccess(call.runtime);
  const Value all = call.keyword(u"all");
  std::error_code error;
  const fs::path folder = native(call, 0).lexically_normal();
  const fs::path path = folder.has_filename() ? folder : folder.parent_path();
  if (fs::is_directory(path, error)) return Value::ofBoolean(true);
  const bool parents = all.isUnsupplied() || toBoolean(call.runtime, all);
  return Value::ofBoolean(parents ? fs::create_directories(path, error) : fs::create_directory(path, error));
}

Value deleteFile(const Call& call) {
  requireFileAccess(call.runtime);
  return Value::ofBoolean(platform::files().deleteFile(filePath(call, 0)) == platform::error::kSuccess);
}
Value removeDir(const Call& call) {
  requireFileAccess(call.runtime);
  std::error_code error;
  const fs::path path = native(call, 0);
  return Value::ofBoolean(fs::is_directory(path, error) && fs::remove(path, error));
}

// False when the destination exists.
Value copyFile(const Call& call) {
  requireFileAccess(call.runtime);
  std::error_code error;
  if (fs::exists(native(call, 1), error)) return Value::ofBoolean(false);
  return Value::ofBoolean(platform::files().copyFile(filePath(call, 0), filePath(call, 1)) ==
                          platform::error::kSuccess);
}
Value renameFile(const Call& call) {
  requireFileAccess(call.runtime);
  std::error_code error;
  if (fs::exists(native(call, 1), error)) return Value::ofBoolean(false);
  fs::rename(native(call, 0), native(call, 1), error);
  return Value::ofBoolean(!error);
}

Value getFileSize(const Call& call) {
  std::error_code error;
  const auto size = fs::file_size(native(call, 0), error);
  return Value::ofInteger(error ? 0 : clampedInteger(static_cast<double>(size)));
}

// "" when there is no such file.
Value getFileModDate(const Call& call) {
  std::error_code error;
  const auto written = fs::last_write_time(native(call, 0), error);
  if (error) return call.runtime.newString(u"");
  const auto moment = std::chrono::file_clock::to_sys(written);
  return call.runtime.newString(
      dateText(std::chrono::system_clock::to_time_t(std::chrono::time_point_cast<std::chrono::seconds>(moment))));
}

// File names. Nothing here looks at the disk.

std::size_t nameStart(std::u16string_view path) {
  const std::size_t slash = path.find_last_of(u"\\/:");
  return slash == std::u16string_view::npos ? 0 : slash + 1;
}
std::size_t typeStart(std::u16string_view path) {
  const std::size_t dot = path.find_last_of(u'.');
  return dot == std::u16string_view::npos || dot < nameStart(path) ? path.size() : dot;
}
std::u16string path(const Call& call) { return std::u16string(toString(call.runtime, call[0])); }

Value pathOf(const Call& call) { return call.runtime.newString(path(call).substr(0, nameStart(path(call)))); }
Value nameOf(const Call& call) {
  const std::size_t start = nameStart(path(call));
  return call.runtime.newString(path(call).substr(start, typeStart(path(call)) - start));
}
Value typeOf(const Call& call) { return call.runtime.newString(path(call).substr(typeStart(path(call)))); }
Value fileOf(const Call& call) { return call.runtime.newString(path(call).substr(nameStart(path(call)))); }

Value appendPath(const Call& call) {
  std::u16string joined = path(call);
  const std::u16string more(toString(call.runtime, call[1]));
  const bool separated = joined.empty() || joined.back() == u'\\' || joined.back() == u'/';
  const bool starts = !more.empty() && (more.front() == u'\\' || more.front() == u'/');
  if (!separated && !starts) joined += u'\\';
  return call.runtime.newString(joined + (separated && starts && !joined.empty() ? more.substr(1) : more));
}

Value stripPathToLeaf(const Call& call) { return fileOf(call); }
Value removePathLeaf(const Call& call) {
  std::u16string kept = path(call);
  while (!kept.empty() && (kept.back() == u'\\' || kept.back() == u'/')) kept.pop_back();
  kept.resize(nameStart(kept));
  while (kept.size() > 1 && (kept.back() == u'\\' || kept.back() == u'/') && kept[kept.size() - 2] != u':')
    kept.pop_back();
  return call.runtime.newString(kept);
}
Value isAbsolutePath(const Call& call) {
  const std::u16string& p = path(call);
  const bool drive = p.size() > 2 && p[1] == u':' && (p[2] == u'\\' || p[2] == u'/');
  return Value::ofBoolean(drive || p.starts_with(u"\\\\") || p.starts_with(u"/"));
}
Value normalizePath(const Call& call) {
  std::u16string p = path(call);
  for (char16_t& c : p)
    if (c == u'/') c = u'\\';
  return call.runtime.newString(p);
}

constexpr BuiltinEntry kEntries[] = {
    {u"doesFileExist", 1, 1, doesFileExist},
    {u"existFile", 1, 1, doesFileExist},
    {u"doesDirectoryExist", 1, 1, doesDirectoryExist},
    {u"getFiles", 1, 1, getFiles},
    {u"getDirectories", 1, 1, getDirectories},
    {u"makeDir", 1, 1, makeDir},
    {u"removeDir", 1, 1, removeDir},
    {u"deleteFile", 1, 1, deleteFile},
    {u"copyFile", 2, 2, copyFile},
    {u"renameFile", 2, 2, renameFile},
    {u"getFileSize", 1, 1, getFileSize},
    {u"getFileModDate", 1, 1, getFileModDate},
    {u"getFilenamePath", 1, 1, pathOf},
    {u"getFilenameFile", 1, 1, nameOf},
    {u"getFilenameType", 1, 1, typeOf},
    {u"filenameFromPath", 1, 1, fileOf},
    {u"pathConfig.appendPath", 2, 2, appendPath},
    {u"pathConfig.stripPathToLeaf", 1, 1, stripPathToLeaf},
    {u"pathConfig.removePathLeaf", 1, 1, removePathLeaf},
    {u"pathConfig.isAbsolutePath", 1, 1, isAbsolutePath},
    {u"pathConfig.normalizePath", 1, 1, normalizePath},
};

}  // namespace

std::span<const BuiltinEntry> fileSystemBuiltins() { return kEntries; }

}  // namespace hostkit::script
