// INI files. Sections and keys are found without regard to case; lines that say neither stay as they are.
#include <algorithm>
#include <optional>

#include "hostkit/script/library/library.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/elements.h"
#include "hostkit/script/machine/streams.h"
#include "hostkit/script/syntax/source.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

using Lines = std::vector<std::u16string>;

Lines readLines(const std::u16string& path) {
  Lines lines;
  const auto bytes = readBytes(path);
  if (!bytes) return lines;
  std::u16string line;
  for (const char16_t c : decodeScript(*bytes)) {
    if (c == u'\n') {
      lines.push_back(std::move(line));
      line.clear();
    } else if (c != u'\r') {
      line += c;
    }
  }
  if (!line.empty()) lines.push_back(std::move(line));
  return lines;
}

bool writeLines(const std::u16string& path, const Lines& lines) {
  TextStreamObject file(path, u"", true);
  if (!TextStreamObject::open(file, u"w")) return false;
  for (const std::u16string& line : lines) file.write(line + u"\n");
  return true;
}

std::optional<std::u16string> sectionOf(std::u16string_view line) {
  line = trimmed(line);
  if (line.size() < 2 || line.front() != u'[' || line.back() != u']') return std::nullopt;
  return std::u16string(trimmed(line.substr(1, line.size() - 2)));
}
std::optional<std::u16string> keyOf(std::u16string_view line) {
  const std::size_t equals = line.find(u'=');
  if (equals == std::u16string_view::npos || trimmed(line).starts_with(u';')) return std::nullopt;
  return std::u16string(trimmed(line.substr(0, equals)));
}
std::u16string valueOf(std::u16string_view line) { return std::u16string(trimmed(line.substr(line.find(u'=') + 1))); }

// The lines of a section, without its head; both ends at the end of the file when there is none.
struct Range {
  std::size_t first, last;
};
Range findSection(const Lines& lines, std::u16string_view section) {
  std::size_t first = lines.size();
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const auto head = sectionOf(lines[i]);
    if (!head) continue;
    if (first < lines.size()) return {first, i};
    if (equalFolded(*head, section)) first = i + 1;
    if (first == lines.size() && equalFolded(*head, section)) return {first, first};
  }
  return {first, lines.size()};
}
bool hasSection(const Lines& lines, std::u16string_view section) {
  return std::any_of(lines.begin(), lines.end(), [&](const auto& line) {
    const auto head = sectionOf(line);
    return head && equalFolded(*head, section);
  });
}
std::size_t findKey(const Lines& lines, Range range, std::u16string_view key) {
  for (std::size_t i = range.first; i < range.last; ++i)
    if (const auto found = keyOf(lines[i]); found && equalFolded(*found, key)) return i;
  return lines.size();
}

std::u16string text(const Call& call, std::size_t index) { return std::u16string(toString(call.runtime, call[index])); }

Value names(Runtime& runtime, const std::vector<std::u16string>& found) {
  const Root made(runtime.heap(), runtime.heap().make<ArrayObject>());
  for (const auto& name : found) appendTo(runtime, *as<ArrayObject>(made.value), runtime.newString(name));
  return made.value;
}

// All sections, the keys of one, or a value.
Value get(const Call& call) {
  requireFileAccess(call.runtime);
  const Lines lines = readLines(filePath(call, 0));
  std::vector<std::u16string> found;
  if (call.count() == 1) {
    for (const auto& line : lines)
      if (const auto head = sectionOf(line)) found.push_back(*head);
    return names(call.runtime, found);
  }
  const Range range = findSection(lines, text(call, 1));
  if (call.count() == 2) {
    for (std::size_t i = range.first; i < range.last; ++i)
      if (const auto key = keyOf(lines[i])) found.push_back(*key);
    return names(call.runtime, found);
  }
  const std::size_t line = findKey(lines, range, text(call, 2));
  return call.runtime.newString(line < lines.size() ? valueOf(lines[line]) : u"");
}

Value set(const Call& call) {
  requireFileAccess(call.runtime);
  Lines lines = readLines(filePath(call, 0));
  const std::u16string& section = text(call, 1);
  if (!hasSection(lines, section)) lines.push_back(u"[" + section + u"]");
  const Range range = findSection(lines, section);
  const std::u16string line = text(call, 2) + u"=" + text(call, 3);
  const std::size_t at = findKey(lines, range, text(call, 2));
  if (at < lines.size()) {
    lines[at] = line;
  } else {
    std::size_t end = range.last;
    while (end > range.first && trimmed(lines[end - 1]).empty()) --end;
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(end), line);
  }
  return Value::ofBoolean(writeLines(filePath(call, 0), lines));
}

Value remove(const Call& call) {
  requireFileAccess(call.runtime);
  Lines lines = readLines(filePath(call, 0));
  if (!hasSection(lines, text(call, 1))) return Value::ofBoolean(false);
  const Range range = findSection(lines, text(call, 1));
  auto first = lines.begin() + static_cast<std::ptrdiff_t>(range.first) - 1,
       last = lines.begin() + static_cast<std::ptrdiff_t>(range.last);
  if (call.count() > 2) {
    const std::size_t at = findKey(lines, range, text(call, 2));
    if (at >= lines.size()) return Value::ofBoolean(false);
    first = lines.begin() + static_cast<std::ptrdiff_t>(at);
    last = first + 1;
  }
  lines.erase(first, last);
  return Value::ofBoolean(writeLines(filePath(call, 0), lines));
}

Value has(const Call& call) {
  requireFileAccess(call.runtime);
  const Lines lines = readLines(filePath(call, 0));
  if (call.count() == 2) return Value::ofBoolean(hasSection(lines, text(call, 1)));
  return Value::ofBoolean(findKey(lines, findSection(lines, text(call, 1)), text(call, 2)) < lines.size());
}

constexpr BuiltinEntry kEntries[] = {
    {u"getINISetting", 1, 3, get},
    {u"setINISetting", 4, 4, set},
    {u"delINISetting", 2, 3, remove},
    {u"hasINISetting", 2, 3, has},
};

}  // namespace

std::span<const BuiltinEntry> iniBuiltins() { return kEntries; }

}  // namespace hostkit::script
