// Running a piece of script text.
#pragma once

#include <cstdint>
#include <string>

#include "hostsdk/script_runtime.h"
#include "plugin/interface/mxs/frame.h"

namespace corvantis::mxs {

// One evaluation of one script text. Construction notes the thread's script state (output stream, evaluation level,
// source position), destruction puts it back, whatever the script did to it.
class executeScriptString {
 public:
  explicit executeScriptString(std::u16string text);
  ~executeScriptString();
  executeScriptString(const executeScriptString&) = delete;
  executeScriptString& operator=(const executeScriptString&) = delete;

  // Runs the text as one parenthesised block and gives the value of its last expression (see evaluate for how long it
  // lives, and for script errors). While it runs the global __corvantisMXSlocals__ is an empty array that the script
  // may use; afterwards the global is as it was. To be called once.
  hostsdk::Value* run();

 private:
  hostsdk::ScriptRuntime& runtime_;
  frame<2> values_;
  hostsdk::StringStream* buffer_;
  hostsdk::Array* locals_;
  std::int32_t savedEvaluationLevel_;
  std::int32_t savedSourcePosition_;
  hostsdk::CharStream* savedOutput_;
  std::u16string text_;
};

}  // namespace corvantis::mxs
