#include "worker/conversation/protocol.h"

#include <cstdlib>
#include <optional>
#include <string_view>

#include "protocol/words.h"

namespace worker {
namespace {

// What follows `prefix` in `text`, if it begins so.
std::optional<std::string> after(const std::string& text, std::string_view prefix) {
  if (!std::string_view(text).starts_with(prefix)) return std::nullopt;
  return text.substr(prefix.size());
}

Message readRequest(const std::string& payload, const std::string& request) {
  if (auto line = after(request, protocol::notice::kStdout)) return {MessageKind::log, "", *line};
  if (auto line = after(request, protocol::notice::kWarn)) return {MessageKind::warning, "", *line};
  if (auto title = after(request, protocol::notice::kSetTitle)) return {MessageKind::title, "", *title};
  if (auto percent = after(request, protocol::notice::kProgress)) {
    Message message{MessageKind::progress, "", *percent};
    message.value = std::strtof(percent->c_str(), nullptr);
    return message;
  }
  const std::size_t blank = request.find(' ');
  const std::string word = request.substr(0, blank);
  for (const std::string_view known : protocol::question::kAll)
    if (word == known)
      return {MessageKind::question, word, blank == std::string::npos ? "" : request.substr(blank + 1)};
  return {MessageKind::unknownNotice, "", payload};
}

}  // namespace

std::string commandLine(const std::vector<std::string>& fields) {
  std::string line;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) line += ',';
    for (const char c : fields[i]) {
      if (c == '\n') {
        line += "\\n";
        continue;
      }
      if (c == '\\' || c == '"' || c == ',') line += '\\';
      line += c;
    }
  }
  return line;
}

Message readMessage(const std::string& payload) {
  if (auto request = after(payload, protocol::kFunction)) return readRequest(payload, *request);
  if (auto text = after(payload, protocol::kError)) return {MessageKind::error, "", *text};
  if (auto text = after(payload, protocol::kSuccessWith)) return {MessageKind::success, "", *text};
  if (auto text = after(payload, protocol::kSuccess)) return {MessageKind::success, "", *text};
  if (payload == protocol::kStarted) return {MessageKind::started, "", ""};
  return {MessageKind::unknown, "", payload};
}

}  // namespace worker
