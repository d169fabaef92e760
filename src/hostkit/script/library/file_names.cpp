// Taking file names apart. Nothing here looks at the disk.
#include "hostkit/script/library/builtins.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

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

std::span<const BuiltinEntry> fileNameBuiltins() { return kEntries; }

}  // namespace hostkit::script
