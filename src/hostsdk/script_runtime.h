// The script runtime as plug-ins use it: making values, keeping them alive, globals, and evaluation.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "hostsdk/api.h"
#include "hostsdk/script_value.h"

namespace hostsdk {

// Script state of a thread.
struct ThreadLocals {
  CharStream* currentStdout = nullptr;  // where print and format go: the listener unless a script changed it
  std::int32_t evaluationLevel = 0;     // how deep evaluations nest
  std::int32_t sourcePosition = 0;      // where the running script stands in its text
  Value* result = nullptr;              // the last evaluation's value; kept alive
};

// Value slots that the collector sees. Listed with the runtime from construction to destruction, last made first gone.
class HOSTSDK_API ScopedValueTempArray {
 public:
  explicit ScopedValueTempArray(std::size_t count);
  ~ScopedValueTempArray();
  ScopedValueTempArray(const ScopedValueTempArray&) = delete;
  ScopedValueTempArray& operator=(const ScopedValueTempArray&) = delete;

  std::size_t size() const { return count_; }
  Value*& operator[](std::size_t index) { return slots_[index]; }

 private:
  std::size_t count_;
  std::unique_ptr<Value*[]> slots_;
};

// The table of script globals. Names are caseless.
class HOSTSDK_API GlobalsTable {
 public:
  virtual ~GlobalsTable();
  // Null when there is no such global.
  virtual Value* get(Value* name) = 0;
  virtual void set(Value* name, Value* value) = 0;      // must exist
  virtual void put_new(Value* name, Value* value) = 0;  // must not exist
  virtual void remove(Value* name) = 0;
};

// Compiles scripts.
class HOSTSDK_API Parser : public Value {
 public:
  ~Parser() override;
  // Compiles everything the stream holds into one value whose eval() runs it and gives the value of the last
  // expression, or null for an empty stream. Throws MAXScriptException.
  virtual Value* compile_all(CharStream* source) = 0;
};

// A host's script runtime. Every value made here is kept alive by the calling thread's innermost allocation frame until
// that frame is popped, and beyond it only if something reachable holds it: a ScopedValueTempArray slot, a global, the
// thread's result, another value.
class HOSTSDK_API ScriptRuntime {
 public:
  virtual ~ScriptRuntime();

  virtual void init_thread_locals() = 0;
  virtual void push_alloc_frame() = 0;
  virtual void pop_alloc_frame() = 0;
  virtual ThreadLocals& thread_locals() = 0;
  virtual void link(Value** slots, std::size_t count) = 0;  // used by ScopedValueTempArray
  virtual void unlink(Value** slots) = 0;

  virtual Value* newString(std::u16string_view text) = 0;
  virtual Value* intern(std::u16string_view name) = 0;  // the Name value, one for all spellings
  virtual Array* newArray() = 0;
  virtual StringStream* newStringStream() = 0;
  virtual FileStream* newFileStream() = 0;
  virtual Parser* newParser(CharStream* errors) = 0;

  virtual Value* undefined() = 0;
  virtual Value* ok() = 0;
  virtual Value* boolean(bool value) = 0;

  virtual GlobalsTable& globals() = 0;
  // The window (here: standard output) that shows what scripts print.
  virtual CharStream& listener() = 0;
};

// The bound host's runtime. Throws MAXException "No host is bound" when there is none.
HOSTSDK_API ScriptRuntime& scriptRuntime();

}  // namespace hostsdk
