// What a fake was asked, in order, and what a test makes an operation do instead of answering as usual.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace support {

// Runs when its operation is called. nullopt: answer as usual. A value: answer that instead (a pointer-valued operation
// takes 0 as null). It may also throw or fault.
using Hook = std::function<std::optional<int>()>;

Hook answering(int value);
Hook throwingStandard(const std::string& message);  // std::runtime_error
Hook throwingMax(const std::u16string& message);    // hostsdk::MAXException
Hook throwingOther();                               // an int
Hook faulting(std::function<void()> fault);         // one of support/faults.h
Hook writingToNull();
Hook dividingByZero();
// `hook` on the n-th call only, counted from 1.
Hook onCall(int n, Hook hook);

std::string narrow(const std::u16string& text);  // UTF-8

class CallLog {
 public:
  void on(const std::string& operation, Hook hook) { hooks_[operation] = std::move(hook); }
  void off(const std::string& operation) { hooks_.erase(operation); }

  // "operation" or "operation arguments", oldest first.
  const std::vector<std::string>& lines() const { return lines_; }
  // The lines of some operations only.
  std::vector<std::string> linesOf(const std::vector<std::string>& operations) const;
  int count(const std::string& operation) const;
  void clear() { lines_.clear(); }

  // For fakes: writes the call down, then runs its hook. Nothing of ours is on the heap outside this object while the
  // hook runs, so that a fault which abandons the call leaks nothing.
  std::optional<int> note(const char* operation, std::string arguments = {});

 private:
  std::vector<std::string> lines_;
  std::map<std::string, Hook, std::less<>> hooks_;
};

}  // namespace support
