// Running scripts: a piece of text, or a file. evaluate.h tells how long the values live, and what a script error is.
#pragma once

#include <cstdint>
#include <string>

#include "plugin/interface/mxs/evaluate.h"

namespace corvantis::mxs {

// One evaluation of one script text. Construction notes the thread's script state (output stream, evaluation level,
// source position), destruction puts it back, whatever the script did to it.
class executeScriptString {
 public:
  explicit executeScriptString(std::u16string text);
  ~executeScriptString();
  executeScriptString(const executeScriptString&) = delete;
  executeScriptString& operator=(const executeScriptString&) = delete;

  // Runs the text as one parenthesised block and gives the value of its last expression. While it runs the global
  // __corvantisMXSlocals__ is an empty array that the script may use; afterwards the global is as it was. To be called
  // once.
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

// Runs the script file at a Windows path and gives the value of its last expression. Throws std::runtime_error
// "mxs::file_in() - Tried to execute a maxscript file which doesn't exist: "<path>"" before anything is opened.
// A host that cannot open the file makes this a script error.
hostsdk::Value* file_in(const std::u16string& path);

}  // namespace corvantis::mxs
