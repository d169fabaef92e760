#include "hostkit/script/machine/scene_nodes.h"

#include <algorithm>
#include <array>

#include "hostkit/script/machine/elements.h"
#include "hostkit/script/machine/host_values.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

using NodePointer = std::shared_ptr<HostObject>;

// One level of a path: a pattern for node names, or "..." for any number of levels.
struct Level {
  std::u16string pattern;
  bool anyDepth = false;  // "name..." also matches below
};

struct Path {
  std::vector<Level> levels;
  bool isPattern = false;
};

Path readPath(const std::u16string& text) {
  Path path;
  path.levels.emplace_back();
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (c == u'\'') {
      quoted = !quoted;
    } else if (c == u'/' && !quoted) {
      path.levels.emplace_back();
    } else if (text.compare(i, 3, u"...") == 0 && !quoted) {
      path.levels.back().anyDepth = path.isPattern = true;
      i += 2;
    } else if (c == u'\\' && i + 1 < text.size()) {
      path.levels.back().pattern += text[++i];
    } else {
      if (c == u'*' || c == u'?') path.isPattern = true;
      path.levels.back().pattern += c;
    }
  }
  return path;
}

std::u16string nameOf(HostObject& node) {
  const auto found = node.get(u"name");
  const auto* text = found ? std::get_if<std::u16string>(&*found) : nullptr;
  return text ? *text : u"";
}

NodePointer parentOf(HostObject& node) {
  const auto found = node.get(u"parent");
  const auto* parent = found ? std::get_if<NodePointer>(&*found) : nullptr;
  return parent ? *parent : nullptr;
}

// '_' in a path also stands for a blank.
bool nameMatches(std::u16string name, const Level& level) {
  std::u16string pattern = level.pattern;
  if (matchesPattern(name, pattern, true)) return true;
  std::replace(pattern.begin(), pattern.end(), u'_', u' ');
  std::replace(name.begin(), name.end(), u'_', u' ');
  return matchesPattern(name, pattern, true);
}

// Whether the chain of ancestors ends as the levels say. A one-level path finds nodes anywhere.
bool matches(const NodePointer& node, const Path& path, std::size_t levels) {
  if (levels == 0) return true;
  if (!node) return false;
  const Level& level = path.levels[levels - 1];
  const bool here = level.pattern.empty() || nameMatches(nameOf(*node), level);
  const NodePointer parent = levels > 1 || level.anyDepth ? parentOf(*node) : nullptr;
  if (here && (levels == 1 || matches(parent, path, levels - 1))) return true;
  if (!level.anyDepth) return false;
  int guard = 0;
  for (NodePointer above = parent; above && guard < 1000; above = parentOf(*above), ++guard)
    if (nameMatches(nameOf(*above), level) && (levels == 1 || matches(parentOf(*above), path, levels - 1))) return true;
  return false;
}

std::vector<NodePointer> selectedNodes(Runtime& runtime) {
  std::vector<NodePointer> nodes = runtime.host().nodes();
  std::erase_if(nodes, [](const NodePointer& node) {
    const auto found = node->get(u"isselected");
    const auto* selected = found ? std::get_if<bool>(&*found) : nullptr;
    return selected == nullptr || !*selected;
  });
  return nodes;
}

bool isOfClass(const NodePointer& node, std::u16string_view superClass) {
  return superClass.empty() || equalFolded(node->superClassName(), superClass);
}

// Takes the first level off a path when it names a set ($lights/key*) and gives that set's superclass.
std::u16string_view takeSetLevel(Path& path) {
  if (path.levels.size() < 2) return {};
  for (const NamedNodeSet& named : namedNodeSets()) {
    if (named.which == NodeSetObject::Which::selected || !equalFolded(path.levels.front().pattern, named.name))
      continue;
    path.levels.erase(path.levels.begin());
    return named.superClass;
  }
  return {};
}

}  // namespace

std::span<const NamedNodeSet> namedNodeSets() {
  using Which = NodeSetObject::Which;
  static constexpr NamedNodeSet kSets[] = {
      {u"objects", Which::all, u""},           {u"geometry", Which::ofClass, u"GeometryClass"},
      {u"lights", Which::ofClass, u"light"},   {u"cameras", Which::ofClass, u"camera"},
      {u"helpers", Which::ofClass, u"helper"}, {u"shapes", Which::ofClass, u"shape"},
      {u"selection", Which::selected, u""}};
  return kSets;
}

Value resolvePath(Runtime& runtime, const std::u16string& text) {
  if (text.empty()) {
    const auto selected = selectedNodes(runtime);
    if (selected.empty()) return {};
    if (selected.size() == 1) return fromHost(runtime, selected.front());
    return runtime.heap().make<NodeSetObject>(NodeSetObject::Which::selected, u"");
  }
  for (const NamedNodeSet& set : namedNodeSets())
    if (equalFolded(text, set.name))
      return runtime.heap().make<NodeSetObject>(set.which, std::u16string(set.superClass));
  const Path path = readPath(text);
  if (path.isPattern) return runtime.heap().make<NodeSetObject>(NodeSetObject::Which::path, text);
  for (const auto& node : runtime.host().nodes())
    if (matches(node, path, path.levels.size())) return fromHost(runtime, node);
  return {};
}

Value nodesOf(Runtime& runtime, const NodeSetObject& set) {
  Path path;
  std::u16string_view superClass;
  if (set.which == NodeSetObject::Which::ofClass) superClass = set.text;
  if (set.which == NodeSetObject::Which::path) {
    path = readPath(set.text);
    superClass = takeSetLevel(path);
  }
  const Root made(runtime.heap(), runtime.heap().make<ArrayObject>());
  const bool ofSelected = set.which == NodeSetObject::Which::selected;
  for (const auto& node : ofSelected ? selectedNodes(runtime) : runtime.host().nodes())
    if (isOfClass(node, superClass) && matches(node, path, path.levels.size()))
      appendTo(runtime, *as<ArrayObject>(made.value), fromHost(runtime, node));
  return made.value;
}

Value nodeByName(Runtime& runtime, std::u16string_view name) {
  for (const auto& node : runtime.host().nodes())
    if (equalFolded(nameOf(*node), name)) return fromHost(runtime, node);
  return {};
}

}  // namespace hostkit::script
