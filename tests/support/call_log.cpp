#include "support/call_log.h"

#include <utf8.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <utility>

#include "hostsdk/exceptions.h"
#include "support/faults.h"

namespace support {
namespace {

std::string operationOf(const std::string& line) { return line.substr(0, line.find(' ')); }

}  // namespace

Hook answering(int value) {
  return [value] { return value; };
}

Hook throwingStandard(const std::string& message) {
  return [message]() -> std::optional<int> { throw std::runtime_error(message); };
}

Hook throwingMax(const std::u16string& message) {
  return [message]() -> std::optional<int> { throw hostsdk::MAXException(message); };
}

Hook throwingOther() {
  return []() -> std::optional<int> { throw 42; };
}

Hook faulting(std::function<void()> fault) {
  return [fault = std::move(fault)]() -> std::optional<int> {
    fault();
    return std::nullopt;
  };
}

Hook writingToNull() { return faulting(&writeToNull); }
Hook dividingByZero() {
  return faulting([] { divideIntegerByZero(); });
}

Hook onCall(int n, Hook hook) {
  return [n, count = 0, hook = std::move(hook)]() mutable -> std::optional<int> {
    return ++count == n ? hook() : std::nullopt;
  };
}

std::string narrow(const std::u16string& text) { return utf8::utf16to8(text); }

std::vector<std::string> CallLog::linesOf(const std::vector<std::string>& operations) const {
  std::vector<std::string> found;
  std::copy_if(lines_.begin(), lines_.end(), std::back_inserter(found), [&](const std::string& line) {
    return std::find(operations.begin(), operations.end(), operationOf(line)) != operations.end();
  });
  return found;
}

int CallLog::count(const std::string& operation) const { return static_cast<int>(linesOf({operation}).size()); }

std::optional<int> CallLog::note(const char* operation, std::string arguments) {
  std::string& line = lines_.emplace_back(operation);
  if (!arguments.empty()) line.append(" ").append(arguments);
  std::string().swap(arguments);
  const auto hook = hooks_.find(operation);
  return hook == hooks_.end() ? std::nullopt : hook->second();
}

}  // namespace support
