// The script runtime as a host uses it: run files and texts, check them, fire notifications, and lend the port to
// plug-ins.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "hostkit/script/machine/host_bindings.h"
#include "hostsdk/script_runtime.h"

namespace hostkit::script {

class Runtime;

struct RunResult {
  bool succeeded = false;
  bool isFalse = false;      // the value was the boolean false
  std::u16string printed;    // the value's printed form, when succeeded
  std::u16string errorText;  // the listener's report with file, line and caret, when not
};

struct SyntaxProblem {
  std::u16string file;
  std::size_t line = 0, column = 0;  // from 1
  std::u16string text;               // without the leading "-- "
};

// One at a time in a process; used on one thread.
class Engine {
 public:
  // `host` is borrowed.
  Engine(HostBindings& host, EngineOptions options);
  ~Engine();
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  // What plug-ins use; to be bound as HostServices::scripts.
  hostsdk::ScriptRuntime& port();

  // A script's errors are results, never exceptions.
  RunResult runScriptFile(const std::u16string& path);
  RunResult runText(const std::u16string& text);
  // Parses without running. Empty: no problem found. The first problem ends the check.
  std::vector<SyntaxProblem> check(const std::u16string& path);

  // Makes every interface in hostsdk::registeredInterfaces() a global of its name; call again after loading more.
  // Functions take their declared parameters: numbers are converted, booleans must be booleans (or whole numbers),
  // values travel as handles. A value that is not text is worth a warning on the listener, for plug-ins read their
  // values as text. Properties without a setter are read-only.
  void publishInterfaces();

  // Runs what scripts registered with callbacks.addScript for `event`; `parameter` is what
  // callbacks.notificationParam() answers meanwhile. Errors are reported to the listener and end only the callback that
  // raised them.
  void fireNotification(std::u16string_view event, const HostValue& parameter);

  // For tests and benchmarks.
  Runtime& runtime() { return *runtime_; }

 private:
  std::unique_ptr<Runtime> runtime_;
};

}  // namespace hostkit::script
