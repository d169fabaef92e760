// Everything one script runtime consists of. The parts get it handed; there is no global one.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "hostkit/script/machine/heap.h"
#include "hostkit/script/machine/host_bindings.h"
#include "hostkit/script/machine/structures.h"
#include "hostkit/script/syntax/errors.h"
#include "hostkit/script/syntax/lexer.h"

namespace hostkit::script {

class Evaluator;
class Port;
struct Classes;

// What a runtime is furnished with.
struct Library {
  std::vector<std::span<const BuiltinEntry>> functions;
  std::vector<ClassRow> classes;
  void (*defineConstants)(Runtime& runtime) = nullptr;
};

// A script registered with callbacks.addScript.
struct CallbackScript {
  std::u16string event;  // lower case
  Value id;
  Value script;  // text or function
  bool isFile = false;
};

// Makes a source the running script for as long as this lives: the one that getThisScriptFilename names and beside
// which fileIn and include look. A text without a file changes nothing.
class RunningFile {
 public:
  RunningFile(Runtime& runtime, const std::u16string& path);
  ~RunningFile();
  RunningFile(const RunningFile&) = delete;
  RunningFile& operator=(const RunningFile&) = delete;

 private:
  std::vector<std::u16string>& files_;
  std::size_t before_;
};

class Runtime {
 public:
  // `host` is borrowed.
  Runtime(HostBindings& host, EngineOptions options, const Library& library);
  ~Runtime();
  Runtime(const Runtime&) = delete;
  Runtime& operator=(const Runtime&) = delete;

  HostBindings& host() { return host_; }
  const EngineOptions& options() const { return options_; }
  Heap& heap() { return heap_; }
  Evaluator& evaluator() { return *evaluator_; }
  Port& port() { return *port_; }
  Classes& classes() { return *classes_; }

  // The one Name object for all spellings of a text. Names live as long as the runtime.
  NameObject* name(std::u16string_view text);
  StringObject* newString(std::u16string_view text);  // throws a script error past kMaxStringLength
  StringObject* joined(const StringObject& head, std::u16string_view tail);  // the same

  // Globals by name; null when there is none.
  GlobalObject* findGlobal(const NameObject* name);
  std::vector<const GlobalObject*> globals() const;  // all of them, in no order
  GlobalObject* addGlobal(NameObject* name);         // an existing one is returned as it is
  void removeGlobal(const NameObject* name) { globals_.erase(name); }
  void setConstant(std::u16string_view name, Value value);
  Value readGlobal(GlobalObject& global);
  void writeGlobal(GlobalObject& global, const Value& value);  // throws for constants

  // Where print and format go.
  void print(std::u16string_view text);
  // Straight to the listener.
  void report(std::u16string_view text) { options_.listener(text); }

  // A script by its path as given, then in the script folders; null when there is none.
  std::shared_ptr<const Source> findScript(const std::u16string& path) const;
  SourceFinder scriptFinder() const;

  // Runs a text with the globals as its only surroundings and gives its last value. Expression by expression: what
  // precedes an error has taken effect.
  Value runSource(const std::shared_ptr<const Source>& source);

  // State that scripts set
  bool printAllElements = false;
  Value lastResult;
  Value callbackParameter;
  std::vector<CallbackScript> callbacks;
  std::minstd_rand random{1};
  std::vector<std::u16string> runningFiles;  // innermost last

 private:
  void traceRoots(Tracer& tracer) const;
  void defineFunctions(std::span<const BuiltinEntry> family);
  void defineHostGlobals();

  HostBindings& host_;
  EngineOptions options_;
  Heap heap_;
  std::unordered_map<std::u16string, NameObject*> names_;
  std::unordered_map<const NameObject*, GlobalObject*> globals_;
  std::unique_ptr<Classes> classes_;
  std::unique_ptr<Evaluator> evaluator_;
  std::unique_ptr<Port> port_;
};

}  // namespace hostkit::script
