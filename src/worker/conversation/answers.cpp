#include "worker/conversation/answers.h"

#include <fmt/format.h>

#include <cctype>
#include <charconv>
#include <optional>

#include "protocol/words.h"

namespace worker {
namespace {

namespace question = protocol::question;

std::string positive(const std::string& value) { return std::string(protocol::kSuccessWith) + value; }
std::string negative(const std::string& why) { return std::string(protocol::kError) + why; }

std::optional<std::int32_t> readIndex(const std::string& text) {
  std::int32_t index = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), index);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return index;
}

// The element of `list` that `indexText` names, counted from 0.
std::string element(const std::vector<std::string>& list, const std::string& indexText, const std::string& what) {
  const auto index = readIndex(indexText);
  if (!index || *index < 0 || static_cast<std::size_t>(*index) >= list.size())
    return negative(fmt::format("{} {} does not exist; there are {}", what, indexText, list.size()));
  return positive(list[static_cast<std::size_t>(*index)]);
}

std::string joined(const std::vector<std::string>& list) { return fmt::format("{}", fmt::join(list, ";")); }

char folded(char c) { return c == '\\' ? '/' : static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

bool beginsWith(const std::string& path, const std::string& beginning) {
  if (beginning.empty() || path.size() < beginning.size()) return false;
  for (std::size_t i = 0; i < beginning.size(); ++i)
    if (folded(path[i]) != folded(beginning[i])) return false;
  return true;
}

// The first mapping whose beginning fits `path` is applied; no mapping leaves it unchanged.
std::string mapPath(const Job& job, const std::string& path) {
  for (const PathMapping& mapping : job.pathMappings)
    if (beginsWith(path, mapping.from)) return mapping.to + path.substr(mapping.from.size());
  return path;
}

}  // namespace

std::string answerQuestion(const Job& job, const std::string& word, const std::string& argument) {
  if (word == question::kJobInfoEntry) {
    const auto entry = job.jobInfo.find(argument);
    return entry != job.jobInfo.end() ? positive(entry->second) : negative("no job entry \"" + argument + "\"");
  }
  if (word == question::kAuxFile) return element(job.auxFiles, argument, "auxiliary file");
  if (word == question::kPathMappedFilename) return positive(mapPath(job, argument));

  // The submission entries; an element request carries the index before the key.
  std::string key = argument, index;
  if (word == question::kSubmitInfoEntryElement) {
    const std::size_t blank = argument.find(' ');
    index = argument.substr(0, blank);
    key = blank == std::string::npos ? "" : argument.substr(blank + 1);
  }
  const auto entry = job.submitInfo.find(key);
  if (entry == job.submitInfo.end()) return negative("no submission entry \"" + key + "\"");
  if (word == question::kSubmitInfoEntry) return positive(joined(entry->second));
  if (word == question::kSubmitInfoEntryElementCount) return positive(std::to_string(entry->second.size()));
  if (word == question::kSubmitInfoEntryElement) return element(entry->second, index, "element");
  return negative("unknown question \"" + word + "\"");
}

}  // namespace worker
