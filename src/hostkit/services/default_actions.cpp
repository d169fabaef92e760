#include "hostkit/services/default_actions.h"

#include <utility>

#include "hostkit/text/utf8.h"

namespace hostkit::services {

DefaultActions::DefaultActions(std::function<void(const std::string&)> log) : log_(std::move(log)) {}

DefaultActions::Entry* DefaultActions::entry(std::uint32_t type) {
  return type >= 1 && type <= entries_.size() ? &entries_[type - 1] : nullptr;
}

void DefaultActions::SetDefaultAction(std::uint32_t type, std::uint32_t action, std::uint32_t, void*) {
  if (Entry* found = entry(type)) found->action = action;
}

void DefaultActions::GetDefaultAction(std::uint32_t type, std::uint32_t& action) {
  if (const Entry* found = entry(type)) action = found->action;
}

int DefaultActions::MessageCount(std::uint32_t type) {
  const Entry* found = entry(type);
  return found ? static_cast<int>(found->messages.size()) : 0;
}

std::u16string DefaultActions::MessageText(std::uint32_t type, int index) {
  const Entry* found = entry(type);
  if (!found || index < 0 || static_cast<std::size_t>(index) >= found->messages.size()) return {};
  return found->messages[static_cast<std::size_t>(index)];
}

void DefaultActions::beginLoad() {
  for (Entry& each : entries_) each.messages.clear();
}

bool DefaultActions::accept(std::uint32_t type, const std::string& message) {
  Entry* found = entry(type);
  if (!found) return true;
  if (found->action & hostsdk::kActionLog) log_(message);
  if (found->action & hostsdk::kActionRecord) {
    found->messages.push_back(fromUtf8(message));
    return true;
  }
  return (found->action & hostsdk::kActionFail) == 0;
}

}  // namespace hostkit::services
